# The bundle of a Mac: Corvane.app with its Info.plist, its icon and the updater.

set(CORVANE_UPDATE_FEED "" CACHE STRING "Address of the update feed (SUFeedURL); empty: no updates")
set(CORVANE_UPDATE_KEY "" CACHE STRING "Public key that updates are signed with (SUPublicEDKey)")
set(CORVANE_PACKAGING ${CMAKE_CURRENT_LIST_DIR}/../packaging/macos)
find_program(CORVANE_CODESIGN codesign DOC "Signs the bundle; a Mac's own")

# The updater's framework, or nothing. Without a feed and its key it is left out: started without them
# it shows the user an error.
set(CORVANE_SPARKLE "")
if(CORVANE_UPDATE_FEED AND CORVANE_UPDATE_KEY)
  find_library(CORVANE_SPARKLE_FRAMEWORK Sparkle DOC "Sparkle.framework, version 2")
  if(CORVANE_SPARKLE_FRAMEWORK)
    set(CORVANE_SPARKLE ${CORVANE_SPARKLE_FRAMEWORK})
  else()
    message(WARNING "Sparkle.framework was not found: the bundle offers no updates")
  endif()
elseif(CORVANE_UPDATE_FEED OR CORVANE_UPDATE_KEY)
  message(FATAL_ERROR "CORVANE_UPDATE_FEED and CORVANE_UPDATE_KEY belong together")
endif()

# XML's way to write a text.
function(corvane_escape text result)
  string(REPLACE "&" "&amp;" text "${text}")
  string(REPLACE "<" "&lt;" text "${text}")
  set(${result} "${text}" PARENT_SCOPE)
endfunction()

# corvane_bundle(TARGET ICON_TOOL)
#
# Makes the executable TARGET the program of Corvane.app. ICON_TOOL is the target that writes the icon.
function(corvane_bundle target icon_tool)
  set(CORVANE_UPDATE_SETTINGS "")
  if(CORVANE_SPARKLE)
    corvane_escape("${CORVANE_UPDATE_FEED}" feed)
    corvane_escape("${CORVANE_UPDATE_KEY}" key)
    # Checks are off until the user switches them on, so the updater has nothing to ask.
    set(CORVANE_UPDATE_SETTINGS
        "\t<key>SUEnableAutomaticChecks</key>
\t<false/>
\t<key>SUFeedURL</key>
\t<string>${feed}</string>
\t<key>SUPublicEDKey</key>
\t<string>${key}</string>
")
  endif()
  set(plist ${CMAKE_CURRENT_BINARY_DIR}/Info.plist)
  configure_file(${CORVANE_PACKAGING}/Info.plist.in ${plist} @ONLY)

  set(icon ${CMAKE_CURRENT_BINARY_DIR}/Corvane.icns)
  add_custom_command(OUTPUT ${icon} COMMAND ${icon_tool} ${icon} DEPENDS ${icon_tool} VERBATIM)
  set_source_files_properties(${icon} PROPERTIES MACOSX_PACKAGE_LOCATION Resources)
  target_sources(${target} PRIVATE ${icon})
  set_target_properties(${target} PROPERTIES MACOSX_BUNDLE ON OUTPUT_NAME Corvane
                                             MACOSX_BUNDLE_INFO_PLIST ${plist})
  install(TARGETS ${target} BUNDLE DESTINATION .)

  if(CORVANE_SPARKLE)
    set_target_properties(
      ${target} PROPERTIES BUILD_RPATH "@executable_path/../Frameworks"
                           INSTALL_RPATH "@executable_path/../Frameworks")
    set(frameworks $<TARGET_FILE_DIR:${target}>/../Frameworks)
    # A framework holds links to itself, which cp keeps.
    add_custom_command(
      TARGET ${target} POST_BUILD
      COMMAND ${CMAKE_COMMAND} -E make_directory ${frameworks}
      COMMAND ${CMAKE_COMMAND} -E rm -rf ${frameworks}/Sparkle.framework
      COMMAND cp -R ${CORVANE_SPARKLE} ${frameworks}/
      VERBATIM)
  endif()

  # Last of all, since a change breaks the signature; installing changes the program.
  if(CORVANE_CODESIGN)
    set(finish ${CORVANE_PACKAGING}/finish-bundle)
    set(stamp ${CMAKE_CURRENT_BINARY_DIR}/finished)
    add_custom_command(
      OUTPUT ${stamp}
      COMMAND ${finish} $<TARGET_BUNDLE_DIR:${target}>
      COMMAND ${CMAKE_COMMAND} -E touch ${stamp}
      DEPENDS ${target} ${finish} $<TARGET_BUNDLE_CONTENT_DIR:${target}>/Resources/Corvane.icns
              $<TARGET_BUNDLE_CONTENT_DIR:${target}>/Info.plist
      VERBATIM)
    add_custom_target(${target}_finished ALL DEPENDS ${stamp})
    install(CODE "execute_process(COMMAND \"${finish}\" \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/Corvane.app\"
                                 COMMAND_ERROR_IS_FATAL ANY)")
  endif()
endfunction()
