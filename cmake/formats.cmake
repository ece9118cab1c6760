# SPDX-License-Identifier: MIT
# The table of formats, the only one: which reader a suffix gets, what is registered with Windows and what the installer
# gives back follow from it; tools/check-docs holds the README against it.
#
#   kind     the folder below readers/
#   reader   the class NameFileThumbnail of readers/KIND/name_file_thumbnail.h, "-" for none
#   shell    "yes" when the server is registered for the suffix, in this order
set(ZR_FORMATS
    # suffix    kind    reader     shell  what it is
    stl         mesh    Stl        yes    "model, text or binary"
    slc         mesh    Slc        yes    "model as stacked contours"
    vrxdlp      slice   Vrx        yes    "resin slice file"
    vrx         slice   Vrx        yes    "resin slice file"
    fdg         slice   Fdg        yes    "resin slice file"
    gf          slice   Gf         yes    "resin slice file"
    photon      slice   -          yes    "resin slice file"
    photons     slice   Photons    yes    "resin slice file"
    svgx        slice   Svgx       yes    "resin slice file"
    kestravo    slice   Kestravo   yes    "project file"
    obj         mesh    Obj        yes    "model, text"
)

# What follows from it: lists, and texts for configure_file().
set(ZR_READERS "")            # the stl, slc and so on of their file names
set(ZR_SLICE_READERS "")      # those for slice files
set(ZR_READER_HEADERS "")     # the includes of readers/reader_table.cpp
set(ZR_READER_ROWS "")        # its rows
set(ZR_REGISTERED_SUFFIXES "") # with their dots
set(ZR_REGISTRY_KEYS "")      # the script's keys of the suffixes
set(ZR_INSTALLER_SUFFIXES "") # lines of the installer's macro ForEachSuffix

set(rest ${ZR_FORMATS})
while(rest)
    list(POP_FRONT rest suffix kind reader shell description)
    set(functions "nullptr, nullptr")
    if(NOT reader STREQUAL "-")
        string(TOLOWER "${reader}" name)
        if(NOT name IN_LIST ZR_READERS)
            list(APPEND ZR_READERS ${name})
            string(APPEND ZR_READER_HEADERS "#include \"readers/${kind}/${name}_file_thumbnail.h\"\n")
            if(kind STREQUAL "slice")
                list(APPEND ZR_SLICE_READERS ${name})
            endif()
        endif()
        set(functions "make<${reader}FileThumbnail>, ${reader}FileThumbnail::failures")
    endif()
    set(registered false)
    if(shell STREQUAL "yes")
        set(registered true)
        list(APPEND ZR_REGISTERED_SUFFIXES ".${suffix}")
        string(CONFIGURE [[
    NoRemove .@suffix@
    {
        shellex
        {
            {BB2E617C-0920-11d1-9A0B-00C04FC2D6C1} = s '{E45A903D-53AE-4A14-906E-0260D13FF77F}'
        }
    }
]] key @ONLY)
        string(APPEND ZR_REGISTRY_KEYS "${key}")
        string(APPEND ZR_INSTALLER_SUFFIXES "    !insertmacro \${do} \".${suffix}\"\n")
    endif()
    string(APPEND ZR_READER_ROWS "    {\"${suffix}\", ${registered}, ${functions}},\n")
endwhile()
