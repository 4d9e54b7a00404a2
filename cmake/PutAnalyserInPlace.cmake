# Copies the analyser BUILT to PLACE, unless the program that stands there is not one of ours: the checksum of what was put
# there last is kept beside it, and a file with another checksum is a user's own analyser and is left alone.
set(stamp ${PLACE}.built-in.sha256)
file(SHA256 ${BUILT} built)

# A link is the user's, also while what it leads to is away.
if(IS_SYMLINK ${PLACE})
  message(STATUS "${PLACE} is not the built-in analyser and is left as it is")
  return()
endif()

if(EXISTS ${PLACE})
  file(SHA256 ${PLACE} present)
  set(ours "")
  if(EXISTS ${stamp})
    file(READ ${stamp} ours)
  endif()
  if(present STREQUAL built AND ours STREQUAL built)
    return()
  endif()
  if(NOT present STREQUAL ours)
    message(STATUS "${PLACE} is not the built-in analyser and is left as it is")
    return()
  endif()
endif()

cmake_path(GET PLACE PARENT_PATH folder)
file(MAKE_DIRECTORY ${folder})
file(COPY_FILE ${BUILT} ${PLACE}.new)
file(RENAME ${PLACE}.new ${PLACE})
file(WRITE ${stamp} ${built})
