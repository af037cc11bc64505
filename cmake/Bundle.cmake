# Assembles the application bundle at the top of the build folder, the same on every system:
#   Ovra Tessel Lumora.app/Contents/{Info.plist,MacOS/Ovra Tessel Lumora,Resources/...}
set(LUMORA_BUNDLE_NAME "Ovra Tessel Lumora")
set(LUMORA_BUNDLE "${CMAKE_BINARY_DIR}/${LUMORA_BUNDLE_NAME}.app")

set(LUMORA_BUNDLE_RESOURCES
  FallbackPage.css
  FallbackPage.js
  FallbackPageTexts.js
  MisconfigurationPage.html
  NoInternetPage.html
  OvraTesselLumora.svg
  uninstall_lumora.sh)

# Makes an executable the bundle's main program, with its property list and resources beside it.
function(lumora_bundle_application target)
  set(resources "${PROJECT_SOURCE_DIR}/resources")
  set_target_properties(${target} PROPERTIES
    OUTPUT_NAME "${LUMORA_BUNDLE_NAME}"
    RUNTIME_OUTPUT_DIRECTORY "${LUMORA_BUNDLE}/Contents/MacOS")
  configure_file("${resources}/Info.plist.in" "${LUMORA_BUNDLE}/Contents/Info.plist" @ONLY)
  foreach(resource IN LISTS LUMORA_BUNDLE_RESOURCES)
    configure_file("${resources}/${resource}" "${LUMORA_BUNDLE}/Contents/Resources/${resource}" COPYONLY)
  endforeach()
  # The folders and the name are those by which desktops find an application's icon.
  configure_file("${resources}/OvraTesselLumora.svg"
    "${LUMORA_BUNDLE}/Contents/Resources/icons/hicolor/scalable/apps/com.ovra.tessel.OvraTesselLumora.svg" COPYONLY)
endfunction()

# Puts a helper program beside the main one.
function(lumora_bundle_tool target)
  set_target_properties(${target} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${LUMORA_BUNDLE}/Contents/MacOS")
endfunction()
