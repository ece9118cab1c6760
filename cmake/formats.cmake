# SPDX-License-Identifier: MIT
# The table of formats, the only one: which reader a suffix gets, what is registered with Windows, what the installer
# gives back, and which types of files Linux desktops are told of follow from it; tools/check-docs holds the README
# against it. Two lines for each suffix, with "-" for none:
#
#   kind     the folder below readers/
#   reader   the class NameFileThumbnail of readers/KIND/name_file_thumbnail.h
#   shell    "yes" when the server is registered for the suffix, in this order
#
#   type     the MIME type. Suffixes may share one; the first of them describes it.
#   weight   of our glob for the suffix, "-" when shared-mime-info has the type, which is then not defined again.
#            Usual are 50, those of other packages. More than that wins against them.
#   magic    how its files begin: kind of number or text, offset, value
#   also     types that such files are given elsewhere, or for want of better knowledge
#   German   "what it is" in German, for types of ours
set(ZR_FORMATS
    # suffix    kind    reader     shell  what it is
    #           type                        weight  magic  also  German
    stl         mesh    Stl        yes    "model, text or binary"
                model/stl                   -   "-" "model/x.stl-ascii model/x.stl-binary application/sla" "-"
    slc         mesh    Slc        yes    "model as stacked contours"
                model/x-slc                 50  "string 0 -SLCVER" "-" "Modell aus Höhenlinien"
    vrxdlp      slice   Vrx        yes    "resin slice file"
                application/x-vrx           50  "little32 0 0x12FD0107" "-" "Druckdatei für Harzdrucker"
    vrx         slice   Vrx        yes    "resin slice file"
                application/x-vrx           50  "-" "-" "-"
    fdg         slice   Fdg        yes    "resin slice file"
                application/x-fdg           50  "-" "-" "Druckdatei für Harzdrucker"
    gf          slice   Gf         yes    "resin slice file"
                application/x-gf            60  "-" "-" "Druckdatei für Harzdrucker"
    photon      slice   -          yes    "resin slice file"
                -                           -   "-" "-" "-"
    photons     slice   Photons    yes    "resin slice file"
                application/x-photons       50  "-" "-" "Druckdatei für Harzdrucker"
    svgx        slice   Svgx       yes    "resin slice file"
                application/x-svgx          50  "-" "-" "Druckdatei für Harzdrucker"
    kestravo    slice   Kestravo   yes    "project file"
                application/x-kestravo      50  "-" "-" "Projektdatei"
    obj         mesh    Obj        yes    "model, text"
                model/obj                   -   "-" "application/x-tgif" "-"
)

# What follows from it: lists, and texts for configure_file().
set(ZR_READERS "")            # the stl, slc and so on of their file names
set(ZR_SLICE_READERS "")      # those for slice files
set(ZR_READER_HEADERS "")     # the includes of readers/reader_table.cpp
set(ZR_READER_ROWS "")        # its rows
set(ZR_REGISTERED_SUFFIXES "") # with their dots
set(ZR_REGISTRY_KEYS "")      # the script's keys of the suffixes
set(ZR_INSTALLER_SUFFIXES "") # lines of the installer's macro ForEachSuffix
set(ZR_READ_SUFFIXES "")      # those with a reader
include("${CMAKE_CURRENT_LIST_DIR}/mime_types.cmake")

set(rest ${ZR_FORMATS})
while(rest)
    list(POP_FRONT rest suffix kind reader shell description type weight magic also german)
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
        list(APPEND ZR_READ_SUFFIXES ${suffix})
        zr_add_mime_type()
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
    set(is_model false)
    if(kind STREQUAL "mesh")
        set(is_model true)
    endif()
    string(APPEND ZR_READER_ROWS "    {\"${suffix}\", ${is_model}, ${registered}, ${functions}},\n")
endwhile()
zr_define_mime_types()
