# SPDX-FileCopyrightText: 2026 Quillon
# SPDX-License-Identifier: LicenseRef-Quillon

# Fails when a shared library exports anything but the panel's class and the two language functions, or lacks one of
# them:
#   cmake -DLIBRARY=libQuillonFirmwareUpgrade.so -DNM=nm -P check_exported_symbols.cmake
#   cmake -DLIBRARY=QuillonFirmwareUpgrade.dll -DOBJDUMP=objdump -DCXXFILT=c++filt -P check_exported_symbols.cmake
cmake_minimum_required(VERSION 3.22)

set(class "QuillonFirmwareUpgrade::FirmwareUpgradeWidget")
set(owed
    "QuillonFirmwareUpgrade::setLanguage(QuillonFirmwareUpgrade::Language)"
    "QuillonFirmwareUpgrade::getCurrentLanguage()"
    "${class}::FirmwareUpgradeWidget(QWidget*)"
    "${class}::~FirmwareUpgradeWidget()"
    "${class}::setDeviceModel(QuillonFirmwareUpgrade::DeviceModel)"
    "${class}::startAutoRecoverUpgrade()"
    "${class}::upgradeDisplayMsg(QString, bool)"
    "${class}::onDeviceBrickedDetected()"
    "${class}::r2otgConnected()"
    "${class}::staticMetaObject"
    "vtable for ${class}"
    "typeinfo for ${class}")

if(LIBRARY MATCHES "\\.dll$")
    execute_process(COMMAND "${OBJDUMP}" -p "${LIBRARY}" COMMAND "${CXXFILT}"
        OUTPUT_VARIABLE table COMMAND_ERROR_IS_FATAL ANY)
    string(REGEX REPLACE "^.*\n\\[Ordinal/Name Pointer\\] Table\n" "" table "${table}")
    string(REGEX REPLACE "\n\n.*" "" table "${table}")
    set(before_symbol "^\t\\[ *[0-9]+\\] ")
else()
    list(APPEND owed "typeinfo name for ${class}")
    execute_process(COMMAND "${NM}" --dynamic --extern-only --defined-only --demangle "${LIBRARY}"
        OUTPUT_VARIABLE table COMMAND_ERROR_IS_FATAL ANY)
    set(before_symbol "^[0-9a-f]* *[A-Za-z] ")
endif()
string(REGEX MATCHALL "[^\n]+" lines "${table}")
set(exported "")
foreach(line IN LISTS lines)
    string(REGEX REPLACE "${before_symbol}" "" symbol "${line}")
    list(APPEND exported "${symbol}")
endforeach()

set(wrong FALSE)
foreach(symbol IN LISTS exported)
    if(NOT symbol IN_LIST owed AND NOT symbol MATCHES "^(non-virtual thunk to )?${class}::")
        message("exported as well: ${symbol}")
        set(wrong TRUE)
    endif()
endforeach()
foreach(symbol IN LISTS owed)
    if(NOT symbol IN_LIST exported)
        message("not exported: ${symbol}")
        set(wrong TRUE)
    endif()
endforeach()
if(wrong)
    message(FATAL_ERROR "the library does not export what it should")
endif()
