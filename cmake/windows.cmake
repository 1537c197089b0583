# The Windows half of the build: the platform layer, Lumivane.scr and its resources.
enable_language(RC)

set(LUMIVANE_WIN_DEFINITIONS UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN
    _WIN32_WINNT=0x0601 WINVER=0x0601)
target_compile_definitions(lumivane_logic PUBLIC ${LUMIVANE_WIN_DEFINITIONS})

# One statically linked file whose only imports are system DLLs.
add_link_options(-static -static-libgcc -static-libstdc++)

file(GLOB LUMIVANE_PLATFORM_SOURCES CONFIGURE_DEPENDS src/platform/*.cpp)
list(FILTER LUMIVANE_PLATFORM_SOURCES EXCLUDE REGEX "main_win\\.cpp$")
add_library(lumivane_platform STATIC ${LUMIVANE_PLATFORM_SOURCES})
target_link_libraries(lumivane_platform PUBLIC lumivane_logic
    user32 gdi32 ole32 shell32 advapi32 uuid windowscodecs)
target_compile_options(lumivane_platform PRIVATE -Wall -Wextra)
# The logic calls functions that the platform layer defines (RandomU32, DecodeScaled, ...): the
# two archives depend on each other, and CMake repeats them on the link line.
target_link_libraries(lumivane_logic INTERFACE lumivane_platform)

# The version resource takes its numbers from project(), as the installer does.
configure_file(res/lumivane_version.h.in ${CMAKE_BINARY_DIR}/generated/lumivane_version.h @ONLY)

# The resource script pulls these in; rebuild it when they change.
set_source_files_properties(res/lumivane.rc PROPERTIES OBJECT_DEPENDS
    "${CMAKE_SOURCE_DIR}/res/lumivane.manifest;${CMAKE_SOURCE_DIR}/res/lumivane.ico;\
${CMAKE_BINARY_DIR}/generated/lumivane_version.h")
add_executable(Lumivane WIN32 src/platform/main_win.cpp res/lumivane.rc)
set_target_properties(Lumivane PROPERTIES OUTPUT_NAME Lumivane SUFFIX .scr)
target_link_options(Lumivane PRIVATE -municode)
target_link_libraries(Lumivane PRIVATE lumivane_platform)
target_include_directories(Lumivane PRIVATE ${CMAKE_BINARY_DIR}/generated)

include(cmake/installer.cmake)
