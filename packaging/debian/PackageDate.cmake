# The same sources give the same package, byte for byte: all dates in it are the one of the changelog's last entry, unless
# somebody names another.
if(NOT DEFINED ENV{SOURCE_DATE_EPOCH})
  execute_process(COMMAND dpkg-parsechangelog --file ${CPACK_STARBLOOM_DEBIAN_FOLDER}/changelog --show-field Timestamp
    OUTPUT_VARIABLE date OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  set(ENV{SOURCE_DATE_EPOCH} ${date})
endif()
