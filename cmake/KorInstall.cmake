# Installed layout: lib/libkor.so*, lib/libkor.a, include/kor.h, include/kor/,
# include/kor.f90 and kor.mod, lib/pkgconfig/kor.pc, lib/cmake/kor/.
include(CMakePackageConfigHelpers)

install(TARGETS kor kor_static EXPORT korTargets
        LIBRARY DESTINATION ${KOR_LIBDIR}
        ARCHIVE DESTINATION ${KOR_LIBDIR}
        INCLUDES DESTINATION ${KOR_INCLUDEDIR})
install(FILES ${CMAKE_SOURCE_DIR}/include/kor.h DESTINATION ${KOR_INCLUDEDIR})
install(FILES ${CMAKE_SOURCE_DIR}/include/kor/types.h ${CMAKE_SOURCE_DIR}/include/kor/codes.h
              ${CMAKE_SOURCE_DIR}/include/kor/messages.def
        DESTINATION ${KOR_INCLUDEDIR}/kor)
install(DIRECTORY ${KOR_GENERATED_DIR}/include/kor/ DESTINATION ${KOR_INCLUDEDIR}/kor
        FILES_MATCHING PATTERN "*.h")
install(FILES ${KOR_GENERATED_DIR}/kor.f90 ${CMAKE_BINARY_DIR}/fortran/kor.mod
        DESTINATION ${KOR_INCLUDEDIR})

install(EXPORT korTargets NAMESPACE kor:: DESTINATION ${KOR_LIBDIR}/cmake/kor)
configure_package_config_file(${CMAKE_SOURCE_DIR}/cmake/korConfig.cmake.in
  ${CMAKE_BINARY_DIR}/korConfig.cmake INSTALL_DESTINATION ${KOR_LIBDIR}/cmake/kor)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/korConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/korConfig.cmake ${CMAKE_BINARY_DIR}/korConfigVersion.cmake
        DESTINATION ${KOR_LIBDIR}/cmake/kor)

configure_file(${CMAKE_SOURCE_DIR}/cmake/kor.pc.in ${CMAKE_BINARY_DIR}/kor.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/kor.pc DESTINATION ${KOR_LIBDIR}/pkgconfig)
