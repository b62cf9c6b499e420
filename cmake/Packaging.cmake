# Completions and the man page, where everything is installed, and the Debian package that cpack makes of it.

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

# All that is installed and nothing else: for a package no test has to be built.
add_custom_target(brindlet_installed DEPENDS brindlet brindlet_share ${BRINDLET_TOOLS})
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

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ
    WORLD_EXECUTE)
set(CPACK_PACKAGE_CONTACT "Brindlet <maintainers@brindlet.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "says what a line of bash will do, and runs it when you agree")
string(CONCAT CPACK_DEBIAN_PACKAGE_DESCRIPTION
       "Brindlet reads a line of bash, plays it through against the files that are\n"
       "really there, and shows which files would be made, moved, changed or deleted.\n"
       "It also makes the line itself, of a request in plain words.")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Libraries that the program loads when it first needs them are not among those that the linker knows of.
set(CPACK_DEBIAN_PACKAGE_DEPENDS libcurl4)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "libatspi2.0-0, libsecret-1-0, unzip, xdg-utils, zip")
# What the tools call where it is there.
string(CONCAT CPACK_DEBIAN_PACKAGE_SUGGESTS
       "bash-completion, ffmpeg, ghostscript, gifsicle, imagemagick, libglib2.0-bin, libnotify-bin, libreoffice, "
       "pandoc, poppler-utils, qpdf")
include(CPack)
