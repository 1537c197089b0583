# The target "installer": Lumivane-<version>-setup.exe in the build folder, made by NSIS from
# installer/lumivane.nsi, the built Lumivane.scr and the built Lumivane.exe (docs/installer.md),
# signed by scripts/sign.sh with its uninstaller when the build is given a certificate. Not
# part of "all", so that building the programs needs no NSIS; scripts/test.sh builds it on every run.
find_program(LUMIVANE_MAKENSIS makensis)
set(LUMIVANE_SETUP ${CMAKE_BINARY_DIR}/Lumivane-${PROJECT_VERSION}-setup.exe)
if(LUMIVANE_MAKENSIS)
    add_custom_command(OUTPUT ${LUMIVANE_SETUP}
        COMMAND ${LUMIVANE_MAKENSIS} -V2 -DVERSION=${PROJECT_VERSION} -DSCR=$<TARGET_FILE:Lumivane>
            -DEXE=$<TARGET_FILE:LumivaneApp> -DICON=${CMAKE_SOURCE_DIR}/res/lumivane.ico
            -DOUTFILE=${LUMIVANE_SETUP} -DSIGN_SCRIPT=${LUMIVANE_SIGN_SCRIPT}
            ${CMAKE_SOURCE_DIR}/installer/lumivane.nsi
        DEPENDS Lumivane LumivaneApp ${CMAKE_SOURCE_DIR}/installer/lumivane.nsi
            ${CMAKE_SOURCE_DIR}/res/lumivane.ico ${LUMIVANE_SIGN_SCRIPT}
        COMMENT "Building ${LUMIVANE_SETUP}"
        VERBATIM)
    add_custom_target(installer DEPENDS ${LUMIVANE_SETUP})
else()
    add_custom_target(installer
        COMMAND ${CMAKE_COMMAND} -E echo "makensis not found: install the Debian package nsis"
        COMMAND ${CMAKE_COMMAND} -E false
        VERBATIM)
endif()
