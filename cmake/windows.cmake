# The Windows half of the build: the platform layer, Lumivane.scr and Lumivane.exe with their
# resources.
enable_language(RC)

set(LUMIVANE_WIN_DEFINITIONS UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN
    _WIN32_WINNT=0x0601 WINVER=0x0601)
target_compile_definitions(lumivane_logic PUBLIC ${LUMIVANE_WIN_DEFINITIONS})

# One statically linked file whose only imports are system DLLs.
add_link_options(-static -static-libgcc -static-libstdc++)

# The platform layer of both programs; the tray application's own windows are in
# src/platform/companion.
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

# Lumivane.exe, the tray application, beside the saver. Besides the saver's system DLLs it imports
# comctl32, which its manifest takes from the system's side-by-side store (common controls 6).
file(GLOB LUMIVANE_COMPANION_PLATFORM_SOURCES CONFIGURE_DEPENDS src/platform/companion/*.cpp)
set_source_files_properties(res/companion.rc PROPERTIES OBJECT_DEPENDS
    "${CMAKE_SOURCE_DIR}/res/companion.manifest;${CMAKE_SOURCE_DIR}/res/lumivane.ico;\
${CMAKE_SOURCE_DIR}/res/companion_ids.h;${CMAKE_BINARY_DIR}/generated/lumivane_version.h")
add_executable(LumivaneApp WIN32 ${LUMIVANE_COMPANION_PLATFORM_SOURCES} res/companion.rc)
set_target_properties(LumivaneApp PROPERTIES OUTPUT_NAME Lumivane SUFFIX .exe)
target_link_options(LumivaneApp PRIVATE -municode)
target_link_libraries(LumivaneApp PRIVATE lumivane_companion lumivane_platform comctl32)
target_include_directories(LumivaneApp PRIVATE ${CMAKE_BINARY_DIR}/generated res)
target_compile_options(LumivaneApp PRIVATE -Wall -Wextra)

# Release signing: with a certificate in the LUMIVANE_SIGN_* variables of the build's environment,
# scripts/sign.sh signs each program as soon as it is linked, so the installer only ever packs
# signed files (README, docs/installer.md). Without one the step changes nothing.
set(LUMIVANE_SIGN_SCRIPT ${CMAKE_SOURCE_DIR}/scripts/sign.sh)
foreach(program Lumivane LumivaneApp)
    add_custom_command(TARGET ${program} POST_BUILD
        COMMAND bash ${LUMIVANE_SIGN_SCRIPT} $<TARGET_FILE:${program}>
        VERBATIM)
endforeach()

include(cmake/installer.cmake)
