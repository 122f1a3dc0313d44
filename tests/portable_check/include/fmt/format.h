#pragma once
// What the program uses of {fmt}, declared only. The library's older versions include half of the
// standard library, and a source that leans on that does not compile with a newer one.
#include <stdio.h>

#include <string>
#include <string_view>
#include <type_traits>

namespace fmt {

struct runtime_text {
    std::string_view text;
};
inline runtime_text runtime(std::string_view text) { return {text}; }

template <typename... Values>
struct basic_format {
    template <std::size_t size>
    consteval basic_format(const char (&)[size]) {}
    basic_format(runtime_text) {}
};
template <typename... Values>
using format_string = basic_format<std::type_identity_t<Values>...>;

template <typename... Values>
std::string format(format_string<Values...> text, Values&&... values);
template <typename Output, typename... Values>
Output format_to(Output output, format_string<Values...> text, Values&&... values);
template <typename... Values>
void print(format_string<Values...> text, Values&&... values);
template <typename... Values>
void print(FILE* file, format_string<Values...> text, Values&&... values);
template <typename Range>
std::string join(const Range& values, std::string_view between);

}  // namespace fmt
