# Makes the program the application bundle Ostrel.app, signed. Included where the target is made: CMake attaches build
# steps to a target in its own folder only.
set(OSTREL_BUILD_NUMBER "1" CACHE STRING "Build number of the bundle (CFBundleVersion); grows with every release")
set(OSTREL_UPDATE_FEED "https://ostrel.example/appcast.xml" CACHE STRING "Address of the update feed")
set(OSTREL_UPDATE_PUBLIC_KEY "" CACHE STRING "Public EdDSA key, in base64, that update archives are signed with")
set(OSTREL_UPDATE_FRAMEWORK "" CACHE PATH "Update framework to embed (…/Sparkle.framework); without it updates are off")

# The public key says whose updates are trusted, so a bundle that carries the framework must have one.
if(OSTREL_UPDATE_FRAMEWORK AND NOT OSTREL_UPDATE_PUBLIC_KEY)
  message(FATAL_ERROR "OSTREL_UPDATE_FRAMEWORK needs OSTREL_UPDATE_PUBLIC_KEY")
endif()
set(update_keys "")
if(OSTREL_UPDATE_PUBLIC_KEY)
  string(REPLACE "&" "&amp;" feed "${OSTREL_UPDATE_FEED}")
  string(REPLACE "<" "&lt;" feed "${feed}")
  string(CONCAT update_keys
    "\n  <key>SUFeedURL</key>\n  <string>${feed}</string>"
    "\n  <key>SUPublicEDKey</key>\n  <string>${OSTREL_UPDATE_PUBLIC_KEY}</string>"
    "\n  <key>SUEnableAutomaticChecks</key>\n  <true/>"
    "\n  <key>SUScheduledCheckInterval</key>\n  <integer>86400</integer>")
endif()
set(info_plist ${CMAKE_CURRENT_BINARY_DIR}/Info.plist)
configure_file(${CMAKE_CURRENT_LIST_DIR}/Info.plist.in ${info_plist} @ONLY)

set(icon ${CMAKE_CURRENT_LIST_DIR}/Ostrel.icns)
set(sign ${CMAKE_CURRENT_LIST_DIR}/sign.sh)
set(contents $<TARGET_BUNDLE_CONTENT_DIR:ostrel>)
set_target_properties(ostrel PROPERTIES
  MACOSX_BUNDLE ON
  OUTPUT_NAME Ostrel
  MACOSX_BUNDLE_INFO_PLIST ${info_plist}
  BUILD_WITH_INSTALL_RPATH ON
  INSTALL_RPATH "@executable_path/../Frameworks"
  LINK_DEPENDS "${info_plist};${icon};${sign};${CMAKE_CURRENT_LIST_DIR}/Ostrel.entitlements")

# The signature seals everything in the bundle, so all of it is put there by these steps, in this order. (A resource that
# is left to CMake may be copied after them.)
add_custom_command(TARGET ostrel POST_BUILD
  COMMAND ${CMAKE_COMMAND} -E make_directory ${contents}/Resources
  COMMAND ${CMAKE_COMMAND} -E copy ${icon} ${contents}/Resources/
  VERBATIM)
if(OSTREL_UPDATE_FRAMEWORK)
  # cp keeps the framework's links, which a copy by CMake would follow and so break its signature. Over an older copy it
  # would leave what the framework no longer has.
  add_custom_command(TARGET ostrel POST_BUILD
    COMMAND ${CMAKE_COMMAND} -E rm -rf ${contents}/Frameworks
    COMMAND ${CMAKE_COMMAND} -E make_directory ${contents}/Frameworks
    COMMAND cp -R ${OSTREL_UPDATE_FRAMEWORK} ${contents}/Frameworks/
    VERBATIM)
endif()
find_program(OSTREL_CODESIGN codesign)
if(OSTREL_CODESIGN)
  add_custom_command(TARGET ostrel POST_BUILD COMMAND ${sign} $<TARGET_BUNDLE_DIR:ostrel> VERBATIM)
else()
  message(STATUS "There is no codesign here: Ostrel.app stays unsigned")
endif()
