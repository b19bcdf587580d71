# Copyright The Kavro STB browser authors
# SPDX-License-Identifier: Apache-2.0

# The plugin. It finds libstbapi.so by that name wherever the program that loads it has it, so there is no search path
# in it.
add_library(kavrostbbrowser MODULE
    shell/CStbApplication.cpp
    shell/CStbApplication.h
    shell/PluginWrapper.cpp
    shell/PluginWrapper.h
    shell/StbInterface.h
    browser/AddressDialog.cpp
    browser/CaBundle.cpp
    browser/DeleteGuard.cpp
    browser/EventNotifier.cpp
    browser/FileGuard.cpp
    browser/FrameGuards.cpp
    browser/JsApiTracer.cpp
    browser/KavroStbBrowser.cpp
    browser/PageEvents.cpp
    browser/PageGuards.cpp
    browser/PageScript.cpp
    browser/RecordTimes.cpp
    browser/RefusedReply.cpp
    browser/ScriptGuard.cpp
    browser/ScriptRelay.cpp
    browser/StbWebNam.cpp
    browser/UserAgentWebPage.cpp
    config/DirectfbrcParser.cpp
    config/PluginConfigParser.cpp
    config/SystemSettings.cpp
    common/other/plainfile.cpp
    common/other/regularfile.cpp
    common/other/substitution.cpp
    common/other/tools.cpp
    jsapi/BootParameters.cpp
    jsapi/CustomScript.cpp
    jsapi/DeviceIdentity.cpp
    jsapi/DisplayCallbacks.cpp
    jsapi/GraphicsLayer.cpp
    jsapi/PageLog.cpp
    jsapi/PlatformRecords.cpp
    jsapi/PlayerCallbacks.cpp
    jsapi/Reboot.cpp
    jsapi/SoundSettings.cpp
    jsapi/StbDisplay.cpp
    jsapi/StbDisplayDevice.cpp
    jsapi/StbDisplayFiles.cpp
    jsapi/StbMedia.cpp
    jsapi/StbMediaPicture.cpp
    jsapi/StbMediaTracks.cpp
    jsapi/StbPVR.cpp
    jsapi/StoragePath.cpp
    jsapi/deprecated/stb_display.cpp
    jsapi/deprecated/stb_media.cpp
    resources/kavrostbbrowser.qrc)
set_target_properties(kavrostbbrowser PROPERTIES
    AUTORCC ON
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON
    SKIP_BUILD_RPATH ON
    INSTALL_RPATH "")
# The sources keep to what Qt 4.7 and Qt 5.15 both have, some of which Qt 5 advises against.
target_compile_definitions(kavrostbbrowser PRIVATE
    QT_NO_DEPRECATED_WARNINGS
    KAVRO_PLUGIN_BUILD_KEY="${KAVRO_PLUGIN_BUILD_KEY}")
target_include_directories(kavrostbbrowser PRIVATE ${CMAKE_SOURCE_DIR} ${KAVRO_REVISION_DIR})
target_link_libraries(kavrostbbrowser PRIVATE
    kavro_warnings stbapi_desktop Qt5::Gui Qt5::Network Qt5::WebKitWidgets Qt5::Widgets Qt5::Xml resolv)
# A class that was left out above would otherwise only be missed when a launcher loads the plugin.
target_link_options(kavrostbbrowser PRIVATE
    LINKER:-z,defs LINKER:--version-script=${CMAKE_SOURCE_DIR}/cmake/plugin.map)
set_target_properties(kavrostbbrowser PROPERTIES LINK_DEPENDS ${CMAKE_SOURCE_DIR}/cmake/plugin.map)
add_dependencies(kavrostbbrowser kavro_revision)
install(TARGETS kavrostbbrowser LIBRARY DESTINATION lib/kavro)
