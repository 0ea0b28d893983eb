# SPDX-FileCopyrightText: 2026 Quillon
# SPDX-License-Identifier: LicenseRef-Quillon

# What a package for Windows holds besides the product, so that it runs on a bare system: Qt's DLLs and plugins, and the
# licence texts of everything in it that others wrote.

# A window, no window for --headless, the panel's animations, a server that redirects to https, and Windows' look, which has
# another name in later versions of Qt.
set(plugins QWindowsIntegration QOffscreenIntegration QGif QSchannelBackend)
if(TARGET Qt6::QModernWindowsStylePlugin)
    list(APPEND plugins QModernWindowsStyle)
else()
    list(APPEND plugins QWindowsVistaStyle)
endif()
foreach(plugin IN LISTS plugins)
    get_target_property(type Qt6::${plugin}Plugin QT_PLUGIN_TYPE)
    install(PROGRAMS "$<TARGET_FILE:Qt6::${plugin}Plugin>" DESTINATION "${CMAKE_INSTALL_BINDIR}/${type}")
endforeach()

# Windows' own DLLs are those whose import libraries lie in the same folder as the kernel's.
set(system_libraries "")
if(CMAKE_CROSSCOMPILING)
    execute_process(COMMAND "${CMAKE_CXX_COMPILER}" -print-file-name=libkernel32.a
        OUTPUT_VARIABLE system_libraries OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    get_filename_component(system_libraries "${system_libraries}" DIRECTORY)
endif()

install(CODE "
    set(folder \"${CMAKE_INSTALL_BINDIR}\")
    set(qt_folder \"$<TARGET_FILE_DIR:Qt6::Core>\")
    set(system_libraries \"${system_libraries}\")
    set(scratch \"${CMAKE_CURRENT_BINARY_DIR}/dlls\")
    set(CMAKE_OBJDUMP \"${CMAKE_OBJDUMP}\")
    set(CMAKE_STRIP \"${CMAKE_STRIP}\")")
install(SCRIPT "${CMAKE_CURRENT_LIST_DIR}/windows/install_dlls.cmake")

if(CMAKE_CROSSCOMPILING)
    install(CODE "
        set(library_licences \"${QT6_INSTALL_PREFIX}/licences\")
        set(compiler \"${CMAKE_CXX_COMPILER}\")")
    install(SCRIPT "${CMAKE_CURRENT_LIST_DIR}/windows/install_licences.cmake")
else()
    install(CODE [[message(WARNING "Before this is given away: add the licence texts of Qt and the compiler.")]])
endif()
configure_file("${CMAKE_CURRENT_LIST_DIR}/windows/package.md.in" "${CMAKE_CURRENT_BINARY_DIR}/package/README.md" @ONLY)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/package/README.md" DESTINATION .)
