# SPDX-License-Identifier: MIT
# CPack runs this when the packages' files are installed, each package's in a folder of its name.
file(GLOB trees "${CPACK_TEMPORARY_INSTALL_DIRECTORY}/*")
execute_process(COMMAND "${CMAKE_CURRENT_LIST_DIR}/complete-trees" "${CPACK_PACKAGE_VERSION}"
    "${CPACK_DEBIAN_PACKAGE_MAINTAINER}" ${trees} COMMAND_ERROR_IS_FATAL ANY)
