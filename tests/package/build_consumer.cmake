# Builds a consumer in a fresh folder and runs it:
#   cmake -DSOURCE=folder -DBUILD=folder -DTREE=folder [-DINSTALLED_FROM=build folder] -P build_consumer.cmake
# With INSTALLED_FROM that build is installed first, and the consumer finds the package there.
cmake_minimum_required(VERSION 3.22)

function(run)
    execute_process(COMMAND ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

file(REMOVE_RECURSE "${BUILD}")
if(INSTALLED_FROM)
    run(${CMAKE_COMMAND} --install "${INSTALLED_FROM}" --prefix "${BUILD}/prefix")
    set(options "-DCMAKE_PREFIX_PATH=${BUILD}/prefix")
else()
    set(options "-DQUILLON_TREE=${TREE}")
endif()
run(${CMAKE_COMMAND} -S "${SOURCE}" -B "${BUILD}" -G Ninja ${options})
run(${CMAKE_COMMAND} --build "${BUILD}" --target consumer)
set(ENV{QT_QPA_PLATFORM} offscreen)
set(ENV{HOME} "${BUILD}/home")
run("${BUILD}/consumer")
