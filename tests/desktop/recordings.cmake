# Copyright The Kavro STB browser authors
# SPDX-License-Identifier: Apache-2.0

add_library(kavro_recorded_file STATIC RecordedFile.cpp)
kavro_provide(kavro_recorded_file tests/desktop/RecordedFile.h)
target_link_libraries(kavro_recorded_file PUBLIC Qt5::Core PRIVATE kavro_warnings PkgConfig::AV)

foreach(name deskrecordings deskrecordingsfailures deskrecordingsrestart deskrecordingssources)
    kavro_add_test(${name} tst_${name}.cpp
        LIBRARIES kavro_desktop_test_support kavro_launcher kavro_recorded_file
        PLATFORM stbapi_desktop)
endforeach()
# Another program that has the schedule's database open.
pkg_check_modules(SQLITE REQUIRED IMPORTED_TARGET sqlite3)
kavro_add_test(deskrecordingslocked tst_deskrecordingslocked.cpp
    LIBRARIES kavro_desktop_test_support PkgConfig::SQLITE
    PLATFORM stbapi_desktop)
foreach(name recordclock taskqueue)
    kavro_add_test(${name} tst_${name}.cpp LIBRARIES kavro_desk kavro_common BARE)
endforeach()
kavro_add_test(deskrecordingsoutside tst_deskrecordingsoutside.cpp
    LIBRARIES kavro_desktop_test_support kavro_launcher
    PLATFORM stbapi_desktop
    BARE)
# Enters its box itself, below which it puts a small disk.
kavro_add_test(deskrecordingsfulldisk tst_deskrecordingsfulldisk.cpp
    LIBRARIES kavro_desktop_test_support kavro_launcher
    PLATFORM stbapi_desktop
    BARE)
