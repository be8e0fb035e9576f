# Read by cpack before each generator. The time of what is packed is that of the commit, unless the environment has one.
if(NOT DEFINED ENV{SOURCE_DATE_EPOCH})
  execute_process(COMMAND git -C "${CPACK_OCT_SOURCE_DIR}" log -1 --format=%ct
    OUTPUT_VARIABLE time OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
  if(NOT time)
    set(time 315532800)  # 1980, where the times of zip files begin
  endif()
  set(ENV{SOURCE_DATE_EPOCH} ${time})
endif()
set(ENV{TZ} UTC)
