# SPDX-License-Identifier: MIT
# Where things are installed: the GNU directories, and what the project makes of them. The two components, speckmend
# and speckmend-simulator, are two packages.

set(wanted_docdir "${CMAKE_INSTALL_DOCDIR}")
include(GNUInstallDirs)
if(NOT wanted_docdir)
  set(CMAKE_INSTALL_DOCDIR "${CMAKE_INSTALL_DATAROOTDIR}/doc/speckmend")
endif()

set(SPECKMEND_INSTALL_SIMULATOR "${CMAKE_INSTALL_LIBDIR}/speckmend-simulator")
set(SPECKMEND_INSTALL_SIMULATOR_DATA "${CMAKE_INSTALL_DATADIR}/speckmend-simulator")
set(SPECKMEND_INSTALL_SIMULATOR_DOC "${CMAKE_INSTALL_DOCDIR}-simulator")
