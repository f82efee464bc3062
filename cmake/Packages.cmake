# What `cmake --install` puts in place besides the TalcPath library, which has rules of its own (component talcpath):
#
#   programs   the programs, and their man pages
#   manual     README, docs and examples
#
# cmake/package/ makes packages of these.
include(GNUInstallDirs)

install(TARGETS FwDeploy fwbench rbitool talctool DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT programs)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs/man/ DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT programs)

set(manual_folder ${CMAKE_INSTALL_DATADIR}/doc/fwdeploy)
install(FILES ${PROJECT_SOURCE_DIR}/README.md DESTINATION ${manual_folder} COMPONENT manual)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs DESTINATION ${manual_folder} COMPONENT manual
        FILES_MATCHING PATTERN *.md PATTERN *.png PATTERN man EXCLUDE)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples DESTINATION ${manual_folder} COMPONENT manual PATTERN build EXCLUDE)

# What the scripts of cmake/package/ ask of a build folder.
file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/package-settings @ONLY
     CONTENT "version='@PROJECT_VERSION@'\ncompiler='@CMAKE_CXX_COMPILER@'\n")
