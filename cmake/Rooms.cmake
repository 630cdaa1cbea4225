# Each room of the source tree is a folder whose .cpp files are picked up by
# name, so adding a file needs no build edit. Tests and benchmarks likewise.
function(invscan_sources out)
  set(all)
  foreach(dir ${ARGN})
    file(GLOB_RECURSE found CONFIGURE_DEPENDS "${dir}/*.cpp" "${dir}/*.c")
    list(APPEND all ${found})
  endforeach()
  set(${out} ${all} PARENT_SCOPE)
endfunction()
