# Copyright The Kavro STB browser authors
# SPDX-License-Identifier: Apache-2.0

# Writes OUTPUT with the revision of SOURCE_DIR, and leaves it alone when it is right already. Outside a git tree the
# revision is in revision.txt, which "git archive" fills in.
execute_process(COMMAND git -C ${SOURCE_DIR} rev-parse HEAD --show-toplevel
                OUTPUT_VARIABLE answer RESULT_VARIABLE failed ERROR_QUIET OUTPUT_STRIP_TRAILING_WHITESPACE)
set(revision "")
if(NOT failed)
    string(REGEX MATCH "^([0-9a-f]+)\n(.*)$" matched "${answer}")
    file(REAL_PATH "${SOURCE_DIR}" source)
    # A source archive unpacked inside somebody's git tree is not that tree's revision.
    if(CMAKE_MATCH_2 STREQUAL source)
        set(revision ${CMAKE_MATCH_1})
    endif()
endif()
if(NOT revision)
    file(STRINGS ${SOURCE_DIR}/cmake/revision.txt revision LIMIT_COUNT 1)
endif()
string(LENGTH "${revision}" length)
if(NOT length EQUAL 40 OR NOT revision MATCHES "^[0-9a-f]+$")
    string(REPEAT "0" 40 revision)
endif()
file(CONFIGURE OUTPUT ${OUTPUT} CONTENT "#define KAVRO_REVISION \"${revision}\"\n" @ONLY)
