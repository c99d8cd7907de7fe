# cpack --config packaging/windows/both.cmake, in the project's folder: one zip of what both widths install.
include(${CMAKE_CURRENT_LIST_DIR}/../../build/windows-x64/CPackConfig.cmake)
set(builds ${CMAKE_CURRENT_LIST_DIR}/../../build)
set(CPACK_INSTALL_CMAKE_PROJECTS "${builds}/windows-x64;KVX2800T;ALL;/;${builds}/windows-x86;KVX2800T;ALL;/")
string(REPLACE windows-x64 windows CPACK_PACKAGE_FILE_NAME ${CPACK_PACKAGE_FILE_NAME})
