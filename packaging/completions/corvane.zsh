#compdef corvane
# Completion of corvane for zsh.
_corvane_function() {
    compadd -- ${(f)"$(_call_program functions $words[1] functions 2>/dev/null | cut -f 2)"}
}

_corvane_rest() {
    case $words[2] in
    help) _corvane_function ;;
    db) (( CURRENT == 3 )) && compadd create table || _files ;;
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
    '--hidden[which files are hidden]:which:(marked named)' \
    '--progress[progress of long work]:when:(auto always never)' \
    '--where[only records for which this is true]:calculation:' \
    '--to[where the files go]:folder:_files -/' \
    '--name[file name or title]:calculation:' \
    '--name-field[text field that takes the name of the file]:field:' \
    '--as[what import makes of a file]:kind:(auto image file)' \
    '--by-reference[keep where the files are]' \
    '--replace[overwrite files]' \
    '--jobs[so many processes]:number:' \
    '--resume[go on where the same update stopped]' \
    '--help[show the usage]' \
    '--version[show the version]' \
    '1:command:((eval\:"evaluate calculations" functions\:"list the functions" about\:"show what the plug-in says" help\:"show the manual of a function" db\:"make a database file, or a table" import\:"files into records" show\:"show records or tables" update\:"evaluate calculations for each record" export\:"fields into files" sheet\:"a page of pictures and waveforms" worker\:"evaluate what standard input asks for"))' \
    '*:argument:_corvane_rest'
