# SPDX-FileCopyrightText: 2026 Quillon
# SPDX-License-Identifier: LicenseRef-Quillon

# Writes the software bill of materials of a package, SPDX 2.3 in JSON:
#   cmake -DPLATFORM=linux|windows -DPACKAGE=file -DVERSION=version -DCREATED=2026-01-31T12:00:00Z -DOUTPUT=file
#         [-DQT=version -DUDEV=version ...] -P make_bill.cmake
# third-party.json says what there is; versions are given under the names that stand there. Nothing in it depends on when or
# where it is made.
cmake_minimum_required(VERSION 3.22)

file(READ "${CMAKE_CURRENT_LIST_DIR}/third-party.json" data)
file(SHA256 "${PACKAGE}" digest)
get_filename_component(file_name "${PACKAGE}" NAME)

# package(RESULT ID NAME VERSION SUPPLIER LICENCE): one of the bill's packages.
function(package result id name version supplier licence)
    set(text "{}")
    set(fields "SPDXID=SPDXRef-${id}" "name=${name}" "versionInfo=${version}" "supplier=Organization: ${supplier}"
        "downloadLocation=NOASSERTION" "licenseConcluded=${licence}" "licenseDeclared=${licence}"
        "copyrightText=NOASSERTION")
    foreach(field IN LISTS fields)
        string(REGEX MATCH "^([^=]*)=(.*)$" unused "${field}")
        string(JSON text SET "${text}" "${CMAKE_MATCH_1}" "\"${CMAKE_MATCH_2}\"")
    endforeach()
    string(JSON text SET "${text}" filesAnalyzed false)
    set(${result} "${text}" PARENT_SCOPE)
endfunction()

# relate(FROM HOW TO)
function(relate from how to)
    string(JSON count LENGTH "${bill}" relationships)
    string(JSON text SET "${bill}" relationships ${count}
        "{\"spdxElementId\":\"SPDXRef-${from}\",\"relationshipType\":\"${how}\",\"relatedSpdxElement\":\"SPDXRef-${to}\"}")
    set(bill "${text}" PARENT_SCOPE)
endfunction()

set(bill "{}")
foreach(field IN ITEMS "spdxVersion=SPDX-2.3" "dataLicense=CC0-1.0" "SPDXID=SPDXRef-DOCUMENT" "name=${file_name}"
        "documentNamespace=https://quillon.example/spdx/${file_name}-${digest}")
    string(REGEX MATCH "^([^=]*)=(.*)$" unused "${field}")
    string(JSON bill SET "${bill}" "${CMAKE_MATCH_1}" "\"${CMAKE_MATCH_2}\"")
endforeach()
string(JSON bill SET "${bill}" creationInfo "{\"created\":\"${CREATED}\",\"creators\":[\"Organization: Quillon\"]}")
string(JSON bill SET "${bill}" relationships "[]")
set(terms "[]")
foreach(term IN ITEMS "Quillon=All rights reserved. No licence is granted yet: the owner has still to choose one."
        "Microsoft-Windows=As a part of Windows, under its terms.")
    string(REGEX MATCH "^([^=]*)=(.*)$" unused "${term}")
    string(JSON count LENGTH "${terms}")
    string(JSON terms SET "${terms}" ${count}
        "{\"licenseId\":\"LicenseRef-${CMAKE_MATCH_1}\",\"extractedText\":\"${CMAKE_MATCH_2}\"}")
endforeach()
string(JSON bill SET "${bill}" hasExtractedLicensingInfos "${terms}")

package(product Product quillon-firmware-upgrade "${VERSION}" Quillon LicenseRef-Quillon)
string(JSON product SET "${product}" packageFileName "\"${file_name}\"")
string(JSON product SET "${product}" checksums "[{\"algorithm\":\"SHA256\",\"checksumValue\":\"${digest}\"}]")
set(packages "[]")
string(JSON packages SET "${packages}" 0 "${product}")
relate(DOCUMENT DESCRIBES Product)

string(JSON count LENGTH "${data}" components)
math(EXPR last "${count} - 1")
foreach(index RANGE ${last})
    string(JSON use ERROR_VARIABLE missing GET "${data}" components ${index} use ${PLATFORM})
    if(missing)
        continue()
    endif()
    foreach(word IN ITEMS name supplier licence)
        string(JSON ${word} GET "${data}" components ${index} ${word})
    endforeach()
    string(JSON variable GET "${data}" components ${index} version ${PLATFORM})
    string(JSON held GET "${data}" components ${index} held ${PLATFORM})
    set(version NOASSERTION)
    if(variable AND DEFINED ${variable})
        set(version "${${variable}}")
    endif()
    string(REGEX REPLACE "[^A-Za-z0-9]+" "-" id "${name}")
    package(part "${id}" "${name}" "${version}" "${supplier}" "${licence}")
    string(JSON length LENGTH "${packages}")
    string(JSON packages SET "${packages}" ${length} "${part}")
    if(held)
        relate(Product CONTAINS "${id}")
    else()
        relate(Product DEPENDS_ON "${id}")
    endif()
endforeach()
string(JSON bill SET "${bill}" packages "${packages}")
file(WRITE "${OUTPUT}" "${bill}\n")
