# cmake -DSRC=dir -DDST=dir -P CopyTree.cmake: copies SRC into DST when SRC exists (copy_directory fails
# on a missing source, and a fresh checkout may lack a folder that holds no file yet).
if(EXISTS "${SRC}")
  file(COPY "${SRC}/" DESTINATION "${DST}")
endif()
