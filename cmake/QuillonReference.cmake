# SPDX-FileCopyrightText: 2026 Quillon
# SPDX-License-Identifier: LicenseRef-Quillon

# "cmake --build BUILD --target reference" makes browsable documentation of the public headers in BUILD/reference; doxygen's
# warnings are errors.
find_program(QUILLON_DOXYGEN doxygen)
if(NOT QUILLON_DOXYGEN)
    return()
endif()
set(reference_folder "${PROJECT_BINARY_DIR}/reference")
set(reference_headers "${PROJECT_BINARY_DIR}/reference-headers")
# As they are included.
quillon_lay_public_headers("${reference_headers}")
set(reference_sources "${reference_headers}" "${PROJECT_SOURCE_DIR}/hid/include/HIDCommunicator/OrvikHIDManager.h"
    "${PROJECT_SOURCE_DIR}/docs/reference/start.md" "${PROJECT_SOURCE_DIR}/docs/integrating.md")
list(TRANSFORM reference_sources REPLACE "(.+)" "\"\\1\"" OUTPUT_VARIABLE quoted)
list(JOIN quoted " " reference_input)
configure_file("${PROJECT_SOURCE_DIR}/docs/reference/Doxyfile.in" "${PROJECT_BINARY_DIR}/Doxyfile" @ONLY)
add_custom_target(reference
    COMMAND "${CMAKE_COMMAND}" -E rm -rf "${reference_folder}"
    COMMAND "${CMAKE_COMMAND}" -E make_directory "${reference_folder}"
    COMMAND "${CMAKE_COMMAND}" -E copy_directory "${PROJECT_SOURCE_DIR}/docs/images" "${reference_folder}/images"
    COMMAND "${QUILLON_DOXYGEN}" "${PROJECT_BINARY_DIR}/Doxyfile"
    COMMENT "The reference is ${reference_folder}/index.html" VERBATIM)
