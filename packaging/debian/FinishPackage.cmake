# Packs the package anew with Debian's own tool, which puts the same files into the same bytes. CPack has also given it scripts
# that renew the cache of shared libraries, as if the modules were some; nobody but the program loads them.
foreach(package IN LISTS CPACK_PACKAGE_FILES)
  set(folder ${CPACK_TOPLEVEL_DIRECTORY}/repacked)
  file(REMOVE_RECURSE ${folder})
  execute_process(COMMAND dpkg-deb --raw-extract ${package} ${folder} COMMAND_ERROR_IS_FATAL ANY)
  file(REMOVE ${folder}/DEBIAN/postinst ${folder}/DEBIAN/postrm)
  execute_process(COMMAND dpkg-deb --root-owner-group -Zxz --build ${folder} ${package} OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
endforeach()
