# What the program stands on. Found here once, so that every folder sees the same targets.
find_package(PkgConfig REQUIRED)
find_package(PNG REQUIRED)
find_package(Freetype REQUIRED)
find_package(Imath REQUIRED)
pkg_check_modules(glib REQUIRED IMPORTED_TARGET gio-2.0)
pkg_check_modules(fontconfig REQUIRED IMPORTED_TARGET fontconfig)
find_package(CLI11 REQUIRED)
find_package(nlohmann_json REQUIRED)
