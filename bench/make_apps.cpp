// Makes a home with 300 applications: `bench_make_apps HOME`. Each has an Info.plist of the usual
// size, some 4.5 KB of XML, and a file in the library from which its last use is estimated.
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <string>

#include <fmt/format.h>

namespace {

constexpr int applications = 300;
constexpr int documentTypes = 9;

std::string documentType(int number) {
    return fmt::format(R"(		<dict>
			<key>CFBundleTypeExtensions</key>
			<array>
				<string>ex{0}</string>
				<string>ez{0}</string>
			</array>
			<key>CFBundleTypeName</key>
			<string>Example document {0}</string>
			<key>CFBundleTypeRole</key>
			<string>Editor</string>
			<key>LSHandlerRank</key>
			<string>Owner</string>
		</dict>
)",
                       number);
}

std::string information(int number) {
    std::string types;
    for (int type = 0; type < documentTypes; ++type)
        types += documentType(type);
    return fmt::format(R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
<dict>
	<key>BuildMachineOSBuild</key>
	<string>23A344</string>
	<key>CFBundleDevelopmentRegion</key>
	<string>en</string>
	<key>CFBundleDisplayName</key>
	<string>Example {0}</string>
	<key>CFBundleDocumentTypes</key>
	<array>
{1}	</array>
	<key>CFBundleExecutable</key>
	<string>Example{0}</string>
	<key>CFBundleIconFile</key>
	<string>AppIcon</string>
	<key>CFBundleIdentifier</key>
	<string>com.example.app{0}</string>
	<key>CFBundleName</key>
	<string>Example {0}</string>
	<key>CFBundlePackageType</key>
	<string>APPL</string>
	<key>CFBundleShortVersionString</key>
	<string>2.{0}</string>
	<key>CFBundleVersion</key>
	<string>{0}</string>
	<key>LSMinimumSystemVersion</key>
	<string>11.0</string>
	<key>NSHighResolutionCapable</key>
	<true/>
	<key>NSPrincipalClass</key>
	<string>NSApplication</string>
</dict>
</plist>
)",
                       number, types);
}

void write(const std::filesystem::path& path, const std::string& text) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream stream(path, std::ios::binary);
    stream.exceptions(std::ios::failbit | std::ios::badbit);
    stream << text;
    stream.close();
}

}  // namespace

int main(int count, char** arguments) try {
    if (count != 2) {
        fmt::print(stderr, "usage: bench_make_apps HOME\n");
        return 2;
    }
    const std::filesystem::path home = arguments[1];
    for (int number = 0; number < applications; ++number) {
        write(home / "Applications" / fmt::format("Example {}.app", number) / "Contents" /
                  "Info.plist",
              information(number));
        write(home / "Library" / "Preferences" / fmt::format("com.example.app{}.plist", number),
              "settings");
    }
    return 0;
} catch (const std::exception& error) {
    fmt::print(stderr, "bench_make_apps: {}\n", error.what());
    return 1;
}
