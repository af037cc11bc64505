# The https library. The server builds on its protected parts, so the version matters: Debian has a package of it, elsewhere
# datacentre/macos-libraries brings its one header.
set(DATACENTRE_HTTPLIB_VERSION 0.11)
add_library(datacentre_httplib INTERFACE)
if(APPLE)
  find_path(DATACENTRE_HTTPLIB_HEADERS httplib.h REQUIRED)
  file(STRINGS ${DATACENTRE_HTTPLIB_HEADERS}/httplib.h version REGEX "define CPPHTTPLIB_VERSION ")
  if(NOT version MATCHES "\"${DATACENTRE_HTTPLIB_VERSION}\\.")
    message(FATAL_ERROR "${DATACENTRE_HTTPLIB_HEADERS}/httplib.h is not version ${DATACENTRE_HTTPLIB_VERSION}: "
      "run datacentre/macos-libraries and put its folder first in CMAKE_PREFIX_PATH")
  endif()
  target_include_directories(datacentre_httplib SYSTEM INTERFACE ${DATACENTRE_HTTPLIB_HEADERS})
  target_compile_definitions(datacentre_httplib INTERFACE CPPHTTPLIB_OPENSSL_SUPPORT)
else()
  find_package(PkgConfig REQUIRED)
  pkg_check_modules(httplib REQUIRED IMPORTED_TARGET cpp-httplib)
  target_link_libraries(datacentre_httplib INTERFACE PkgConfig::httplib)
endif()
