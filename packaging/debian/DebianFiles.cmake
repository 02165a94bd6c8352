# Makes the installed files those of a Debian package, before they go into it.
set(root ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr)
set(documents ${root}/share/doc/starbloom)

function(compress name)
  execute_process(COMMAND gzip -9n ${name} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

file(GLOB pages ${root}/share/man/man1/*.1)
foreach(page IN LISTS pages)
  compress(${page})
endforeach()

# The licence itself is on every Debian system, and the copyright file says where.
file(REMOVE ${documents}/LICENSE)
file(RENAME ${documents}/CHANGELOG.md ${documents}/changelog)
file(COPY_FILE ${CPACK_STARBLOOM_DEBIAN_FOLDER}/changelog ${documents}/changelog.Debian)
file(COPY_FILE ${CPACK_STARBLOOM_DEBIAN_FOLDER}/copyright ${documents}/copyright)
compress(${documents}/changelog)
compress(${documents}/changelog.Debian)

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
  execute_process(COMMAND chmod ${mode} ${each} COMMAND_ERROR_IS_FATAL ANY)
  execute_process(COMMAND touch --no-dereference --date=@$ENV{SOURCE_DATE_EPOCH} ${each} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
