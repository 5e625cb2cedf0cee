# Makes first/usr by installing, and second/usr of an installation that was made elsewhere and moved. Each component
# stands once more alone, in only-<component>.
file(REMOVE_RECURSE "${FOLDER}/first" "${FOLDER}/second" "${FOLDER}/before")
macro(qvt_install prefix)
    execute_process(COMMAND "${CMAKE_COMMAND}" --install "${BUILD}" --prefix "${prefix}" ${ARGN}
        OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
endmacro()
qvt_install("${FOLDER}/first/usr")
qvt_install("${FOLDER}/before")
file(MAKE_DIRECTORY "${FOLDER}/second")
file(RENAME "${FOLDER}/before" "${FOLDER}/second/usr")
foreach(component IN ITEMS runtime dev tools)
    file(REMOVE_RECURSE "${FOLDER}/only-${component}")
    qvt_install("${FOLDER}/only-${component}" --component ${component})
endforeach()
