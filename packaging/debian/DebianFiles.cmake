# Makes the installed files those of a Debian package, before they go into it.
set(root ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr)
set(documents ${root}/share/doc/starbloom)

function(run)
  execute_process(COMMAND ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

file(GLOB programs ${root}/bin/* ${root}/libexec/starbloom/*)
file(GLOB modules ${root}/lib/starbloom/*.so)
run(strip --remove-section=.comment --remove-section=.note ${programs})
run(strip --remove-section=.comment --remove-section=.note --strip-unneeded ${modules})

file(GLOB pages ${root}/share/man/man1/*.1)
run(gzip -9n ${pages})

# The licence itself is on every Debian system, and the copyright file says where.
file(REMOVE ${documents}/LICENSE)
file(RENAME ${documents}/CHANGELOG.md ${documents}/changelog)
file(COPY_FILE ${CPACK_STARBLOOM_DEBIAN_FOLDER}/changelog ${documents}/changelog.Debian)
file(COPY_FILE ${CPACK_STARBLOOM_DEBIAN_FOLDER}/copyright ${documents}/copyright)
run(gzip -9n ${documents}/changelog ${documents}/changelog.Debian)
file(MAKE_DIRECTORY ${root}/share/lintian/overrides)
file(COPY_FILE ${CPACK_STARBLOOM_DEBIAN_FOLDER}/lintian-overrides ${root}/share/lintian/overrides/starbloom)

# Where Debian's zsh looks for the completions of packages.
file(MAKE_DIRECTORY ${root}/share/zsh/vendor-completions)
file(RENAME ${root}/share/zsh/site-functions/_starbloom-render ${root}/share/zsh/vendor-completions/_starbloom-render)
file(REMOVE_RECURSE ${root}/share/zsh/site-functions)

file(GLOB_RECURSE all LIST_DIRECTORIES true ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/*)
foreach(each IN LISTS all)
  if(IS_DIRECTORY ${each} OR each MATCHES "/s?bin/|/libexec/")
    set(mode u=rwx,go=rx)
  else()
    set(mode u=rw,go=r)
  endif()
  run(chmod ${mode} ${each})
  run(touch --no-dereference --date=@$ENV{SOURCE_DATE_EPOCH} ${each})
endforeach()
