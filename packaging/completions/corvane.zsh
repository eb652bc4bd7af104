#compdef corvane
# Completion of corvane for zsh.
_corvane_function() {
    compadd -- ${(f)"$(_call_program functions $words[1] functions 2>/dev/null | cut -f 2)"}
}

_corvane_rest() {
    case $words[2] in
    help) _corvane_function ;;
    *) _files ;;
    esac
}

_arguments \
    '--plugin[plug-in library]:library:_files' \
    '--database[current database]:database:_files' \
    '*--drive[drive]:ROOT=FOLDER:' \
    '--interface-version[plug-in interface version of the host]:number:' \
    '--host-version[version of the host]:version:' \
    '--ui[real windows, or none]:windows:(auto none gtk)' \
    '*--answer[what the next dialog answers]:answer:(ok cancel file\: folder\: set\:)' \
    '--json[results as JSON]' \
    '--raw[text results byte for byte]' \
    '--save-streams[write the streams of container results]:folder:_files -/' \
    '--strict[exit status 1 when a calculation fails]' \
    '--progress[progress of long work]:when:(auto always never)' \
    '--help[show the usage]' \
    '1:command:((eval\:"evaluate calculations" functions\:"list the functions" about\:"show what the plug-in says" help\:"show the manual of a function"))' \
    '*:argument:_corvane_rest'
