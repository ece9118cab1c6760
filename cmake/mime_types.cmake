# SPDX-License-Identifier: MIT
# The types of files, for Linux desktops, of the rows of cmake/formats.cmake.
set(ZR_MIME_TYPES "")         # of all files that have a reader
set(ZR_MIME_DEFINITIONS "")   # those that are ours, for shared-mime-info
set(own_types "")

# The current row's types, and what its first line and its suffix tell of its own one.
macro(zr_add_mime_type)
    list(APPEND ZR_MIME_TYPES ${type})
    if(NOT also STREQUAL "-")
        separate_arguments(also)
        list(APPEND ZR_MIME_TYPES ${also})
    endif()
    if(NOT weight STREQUAL "-")
        if(NOT type IN_LIST own_types)
            list(APPEND own_types ${type})
            string(REGEX REPLACE ".*/x-" "" label "${type}")
            string(TOUPPER "${label}" label)
            set(contents_${type} "
    <comment>${label} ${description}</comment>
    <comment xml:lang=\"de\">${label}-${german}</comment>\n")
            if(magic MATCHES "^([a-z0-9]+) ([0-9]+) (.+)$")
                string(APPEND contents_${type} "    <magic>"
                    "<match type=\"${CMAKE_MATCH_1}\" offset=\"${CMAKE_MATCH_2}\" value=\"${CMAKE_MATCH_3}\"/></magic>\n")
            elseif(NOT magic STREQUAL "-")
                message(FATAL_ERROR "${suffix}: \"${magic}\" is not a kind, an offset and a value")
            endif()
        endif()
        string(APPEND contents_${type} "    <glob pattern=\"*.${suffix}\" weight=\"${weight}\"/>\n")
    endif()
endmacro()

# After the last row.
macro(zr_define_mime_types)
    list(REMOVE_DUPLICATES ZR_MIME_TYPES)
    foreach(type IN LISTS own_types)
        string(APPEND ZR_MIME_DEFINITIONS "  <mime-type type=\"${type}\">${contents_${type}}  </mime-type>\n")
    endforeach()
endmacro()
