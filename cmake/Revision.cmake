# Copyright The Kavro STB browser authors
# SPDX-License-Identifier: Apache-2.0

# The target kavro_revision keeps ${KAVRO_REVISION_DIR}/revision.h, which defines KAVRO_REVISION, up to date. It runs
# in every build, because a commit changes no file that a build would notice.
set(KAVRO_REVISION_DIR ${CMAKE_BINARY_DIR}/revision)
add_custom_target(kavro_revision
    COMMAND ${CMAKE_COMMAND} -DSOURCE_DIR=${CMAKE_SOURCE_DIR} -DOUTPUT=${KAVRO_REVISION_DIR}/revision.h
            -P ${CMAKE_SOURCE_DIR}/cmake/WriteRevision.cmake
    BYPRODUCTS ${KAVRO_REVISION_DIR}/revision.h
    COMMENT "" VERBATIM)
