# Writes the files of rules/ into a source, so that the program needs none of them beside it.
function(velto_rule_files source)
    file(GLOB files CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/rules/*.json)
    list(SORT files)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${files})
    set(rows "")
    foreach(file IN LISTS files)
        get_filename_component(name ${file} NAME_WE)
        file(READ ${file} text)
        string(APPEND rows "    {\"${name}\", R\"rule(${text})rule\"},\n")
    endforeach()
    file(WRITE ${source}.new
"// Made of rules/ by cmake/rule_files.cmake.
#include <array>

#include \"cleaning/further/FurtherRule.h\"

namespace velto {

std::span<const RuleFile> ruleFiles() {
    static constexpr auto files = std::to_array<RuleFile>({
${rows}    });
    return files;
}

}  // namespace velto
")
    file(COPY_FILE ${source}.new ${source} ONLY_IF_DIFFERENT)
endfunction()
