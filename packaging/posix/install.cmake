# `cmake --install <build> --prefix <folder>`: what a program needs to build against the driver and to run with it.
include(GNUInstallDirs)

install(TARGETS KVX2800T LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(TARGETS visatrace LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(FILES ${PROJECT_SOURCE_DIR}/api/KVX2800T.h ${PROJECT_SOURCE_DIR}/api/KVX2800TInstrument.h
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
if(NOT KVX_VENDOR_IVI)
    install(TARGETS IviCShared IviConfigServer LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
    install(TARGETS kvx2800t-store RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
    install(DIRECTORY ${PROJECT_SOURCE_DIR}/platform/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
endif()
if(NOT KVX_VENDOR_VISA)
    install(TARGETS visa LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
    install(DIRECTORY ${PROJECT_SOURCE_DIR}/visa/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
endif()

# The installed folder may be moved: the file says where it is relative to itself.
file(RELATIVE_PATH KVX_LIBDIR_TO_PREFIX /${CMAKE_INSTALL_LIBDIR} /)
configure_file(posix/kvx2800t.pc.in kvx2800t.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/kvx2800t.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
