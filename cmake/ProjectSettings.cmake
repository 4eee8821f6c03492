# What our own targets are built with. A consumer's targets never see any of it.
find_package(Threads REQUIRED)
find_package(Boost 1.81 REQUIRED)
find_package(CURL 7.88 REQUIRED)
find_package(OpenSSL REQUIRED)
find_package(simdjson REQUIRED)
find_package(nlohmann_json REQUIRED)
find_package(date REQUIRED)
find_package(ZLIB REQUIRED)
find_package(PkgConfig REQUIRED)
pkg_check_modules(ZVAPIKIT_LIBSECRET REQUIRED IMPORTED_TARGET libsecret-1>=0.20)

# Used where present, and only for our own builds: a host chooses its launcher itself.
if(PROJECT_IS_TOP_LEVEL AND NOT DEFINED CMAKE_CXX_COMPILER_LAUNCHER)
  find_program(ZVAPIKIT_CCACHE ccache)
  if(ZVAPIKIT_CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${ZVAPIKIT_CCACHE})
  endif()
endif()

add_library(zvapikit_settings INTERFACE)
target_compile_features(zvapikit_settings INTERFACE cxx_std_20)
target_compile_options(zvapikit_settings INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor
                                                   -Woverloaded-virtual)
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # When it optimises it sees overlaps in `"text" + std::string` that are not there (GCC bug 105651).
  target_compile_options(zvapikit_settings INTERFACE $<$<NOT:$<CONFIG:Debug>>:-Wno-restrict>)
endif()
if(ZVAPIKIT_SANITIZE)
  target_compile_options(zvapikit_settings INTERFACE -fsanitize=${ZVAPIKIT_SANITIZE} -fno-omit-frame-pointer
                                                     -fno-sanitize-recover=all)
  target_link_options(zvapikit_settings INTERFACE -fsanitize=${ZVAPIKIT_SANITIZE})
endif()

# Objects are the same for a static and a shared library: position-independent, and only what ZVAPIKIT_API marks is
# seen.
function(zvapikit_library target)
  set_target_properties(
    ${target}
    PROPERTIES CXX_VISIBILITY_PRESET hidden
               VISIBILITY_INLINES_HIDDEN ON
               POSITION_INDEPENDENT_CODE ON
               DEFINE_SYMBOL ""
               VERSION ${PROJECT_VERSION}
               SOVERSION ${PROJECT_VERSION_MAJOR}
               INSTALL_RPATH "$ORIGIN")
endfunction()
