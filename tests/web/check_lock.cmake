# Fails if the lock file names a place to fetch from.
file(READ "${FILE}" text)
if(NOT text MATCHES "\"integrity\"")
  message(FATAL_ERROR "${FILE} pins nothing")
endif()
if(text MATCHES "\"resolved\"" OR text MATCHES "://")
  message(FATAL_ERROR "${FILE} names a host; write it with --omit-lockfile-registry-resolved")
endif()
