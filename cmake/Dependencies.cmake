find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)

# The core: JSON, formatting, strict URL parsing, user-perceived characters.
find_package(fmt REQUIRED)
find_package(nlohmann_json REQUIRED)
pkg_check_modules(uriparser REQUIRED IMPORTED_TARGET liburiparser)
pkg_check_modules(utf8proc REQUIRED IMPORTED_TARGET libutf8proc)

# The Linux backend.
if(NOT APPLE)
  pkg_check_modules(gtk REQUIRED IMPORTED_TARGET gtk4)
  pkg_check_modules(webkit REQUIRED IMPORTED_TARGET webkitgtk-6.0)
  pkg_check_modules(curl REQUIRED IMPORTED_TARGET libcurl)
  pkg_check_modules(plist REQUIRED IMPORTED_TARGET libplist-2.0)
  pkg_check_modules(archive REQUIRED IMPORTED_TARGET libarchive)
endif()

# Tests, and on Linux the embedded data centre.
if(BUILD_TESTING OR NOT APPLE)
  find_package(GTest REQUIRED)
  find_package(OpenSSL REQUIRED)
endif()
