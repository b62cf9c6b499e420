# Completions and the man page, where everything is installed, and the Debian packages that cpack makes of it: one for
# terminals, one for the desktop, and one for each file manager that the bar has a companion in.

set(share ${CMAKE_BINARY_DIR}/share)
set(completions ${CMAKE_SOURCE_DIR}/completions)
add_custom_command(
  OUTPUT ${share}/brindlet.bash ${share}/brindlet.zsh ${share}/brindlet.fish
  COMMAND ${completions}/generate $<TARGET_FILE:brindlet> ${share}
  DEPENDS brindlet ${completions}/generate ${completions}/brindlet.bash.in ${completions}/brindlet.zsh.in
          ${completions}/brindlet.fish.in)
add_custom_command(
  OUTPUT ${share}/brindlet.1 ${share}/brindlet.1.gz
  COMMAND ${CMAKE_COMMAND} -E copy ${CMAKE_SOURCE_DIR}/docs/brindlet.1 ${share}/brindlet.1
  COMMAND gzip -9nfk ${share}/brindlet.1
  DEPENDS ${CMAKE_SOURCE_DIR}/docs/brindlet.1)
add_custom_target(brindlet_share ALL DEPENDS ${share}/brindlet.bash ${share}/brindlet.1.gz)
if(TARGET end_to_end_tests)
  add_dependencies(end_to_end_tests brindlet_share)
endif()

set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME brindlet)
set(CPACK_COMPONENTS_ALL brindlet nautilus)
add_subdirectory(companions)

# All that is installed and nothing else: for packages no test has to be built.
add_custom_target(brindlet_installed DEPENDS brindlet brindlet_share ${BRINDLET_TOOLS})
foreach(target brindlet_bar brindlet_thunar)
  if(TARGET ${target})
    add_dependencies(brindlet_installed ${target})
  endif()
endforeach()
set(CMAKE_SKIP_INSTALL_ALL_DEPENDENCY ON)

foreach(tool IN LISTS BRINDLET_TOOLS)
  get_target_property(type ${tool} TYPE)
  if(type STREQUAL EXECUTABLE)
    # Installed with their whole folder, which strips nothing.
    target_link_options(${tool} PRIVATE $<$<CONFIG:Release>:-s>)
  endif()
endforeach()

include(GNUInstallDirs)
install(TARGETS brindlet)
# The program looks for its tools in ../libexec/brindlet, as seen from its own folder.
install(DIRECTORY ${CMAKE_BINARY_DIR}/Binaries/ DESTINATION libexec/brindlet USE_SOURCE_PERMISSIONS)
install(FILES ${share}/brindlet.bash DESTINATION share/bash-completion/completions RENAME brindlet)
install(FILES ${share}/brindlet.zsh DESTINATION share/zsh/vendor-completions RENAME _brindlet)
install(FILES ${share}/brindlet.fish DESTINATION share/fish/vendor_completions.d)
install(FILES ${share}/brindlet.1.gz DESTINATION share/man/man1)
install(FILES ${CMAKE_SOURCE_DIR}/README.md DESTINATION share/doc/brindlet)

if(TARGET brindlet_bar)
  list(APPEND CPACK_COMPONENTS_ALL bar)
  set(share ${CMAKE_SOURCE_DIR}/share)
  install(TARGETS brindlet_bar DESTINATION libexec/brindlet COMPONENT bar)
  install(FILES ${share}/com.fenwold.Brindlet.desktop DESTINATION share/applications COMPONENT bar)
  install(FILES ${share}/com.fenwold.Brindlet.service DESTINATION share/dbus-1/services COMPONENT bar)
  install(FILES ${share}/com.fenwold.Brindlet.svg DESTINATION share/icons/hicolor/scalable/apps COMPONENT bar)
endif()
if(TARGET brindlet_thunar)
  list(APPEND CPACK_COMPONENTS_ALL thunar)
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ
    WORLD_EXECUTE)
set(CPACK_PACKAGE_CONTACT "Brindlet <maintainers@brindlet.example>")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)

# brindlet_package(COMPONENT NAME SUMMARY DESCRIPTION [FIELD VALUE...]): what the package of a component says of itself.
macro(brindlet_package component name summary description)
  string(TOUPPER ${component} upper)
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${name})
  # The first line of a description is the summary.
  set(CPACK_DEBIAN_${upper}_DESCRIPTION "${summary}\n${description}")
  cmake_parse_arguments(ARG "" "DEPENDS;RECOMMENDS;SUGGESTS;SECTION;SHLIBDEPS;ARCHITECTURE" "" ${ARGN})
  foreach(field DEPENDS RECOMMENDS SUGGESTS SECTION SHLIBDEPS ARCHITECTURE)
    if(DEFINED ARG_${field})
      set(CPACK_DEBIAN_${upper}_PACKAGE_${field} "${ARG_${field}}")
    endif()
  endforeach()
endmacro()

# Libraries that a program loads when it first needs them are not among those that the linker knows of.
brindlet_package(
  brindlet brindlet "says what a line of bash will do, and runs it when you agree"
  "Brindlet reads a line of bash, plays it through against the files that are
really there, and shows which files would be made, moved, changed or deleted.
It also makes the line itself, of a request in plain words."
  DEPENDS libcurl4
  RECOMMENDS "libatspi2.0-0, libsecret-1-0, unzip, xdg-utils, zip"
  # What the tools call where it is there, and the desktop's part.
  SUGGESTS "bash-completion, brindlet-bar, cups-client, dcraw, ffmpeg, ghostscript, gifsicle, imagemagick, \
libglib2.0-bin, libnotify-bin, libreoffice, librsvg2-bin, pandoc, poppler-utils, qpdf")
# The modules of Qt's that the pages import come as packages of their own, and nothing is linked with them.
brindlet_package(
  bar brindlet-bar "bar under the file manager that does what you ask of it"
  "A bar hangs under the front window of the file manager, knows what is selected
in it, takes a request in plain words, and shows what would happen before it
does."
  SECTION x11
  DEPENDS "brindlet (= ${PROJECT_VERSION}), at-spi2-core, dbus-bin, libatspi2.0-0, qml6-module-qtquick, \
qml6-module-qtquick-controls, qml6-module-qtquick-layouts, qml6-module-qtquick-shapes, qml6-module-qtquick-templates, \
qml6-module-qtquick-window, qml6-module-qtqml-workerscript"
  RECOMMENDS "default-dbus-session-bus | dbus-session-bus, fonts-noto-color-emoji, libsecret-1-0, qt6-gtk-platformtheme, \
qt6-wayland"
  # By which some file managers say better, or at all, what is selected in them; PCManFM by the last two.
  SUGGESTS "brindlet-nautilus, brindlet-thunar, libatk-adaptor, libgail-common")
brindlet_package(
  thunar brindlet-thunar "what the bar of Brindlet needs inside Thunar"
  "A module of Thunar's that tells the bar of Brindlet what is selected, and selects
the files that a request has made."
  SECTION x11
  DEPENDS thunar
  RECOMMENDS "brindlet-bar (= ${PROJECT_VERSION})")
brindlet_package(
  nautilus brindlet-nautilus "what the bar of Brindlet needs inside Nautilus"
  "An extension of Nautilus's that tells the bar of Brindlet what is selected."
  SECTION x11 ARCHITECTURE all SHLIBDEPS OFF
  DEPENDS "python3-nautilus (>= 4.0), gir1.2-gtk-4.0, gir1.2-nautilus-4.0, nautilus (>= 43)"
  RECOMMENDS "brindlet-bar (= ${PROJECT_VERSION})")
include(CPack)
