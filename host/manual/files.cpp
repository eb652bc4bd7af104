#include "host/manual/manual.h"

#include <array>

namespace host {
namespace {

constexpr auto kNames = std::to_array<std::string_view>(
    {"Media_SetDefaultFolder", "Media_GetDefaultFolder", "Media_CopyItem", "Media_MoveItem",
     "Media_DeleteItem", "Media_RenameItem", "Media_CreateFolder", "Media_ListFolder", "Media_GetItemInfo",
     "Media_CreateAlias", "Media_OpenItem", "Media_ListDisks", "Media_GetPath", "Media_GetName"});

constexpr auto kPages = std::to_array<ManualPage>({
    {"Media_SetDefaultFolder", "The folder from which relative paths count.",
     R"(path   text, in any of these forms; those of other functions are the same:
       /C:/Data/a.txt              absolute; //server/share/a.txt on a share
       a.txt, sub/a.txt, ../a.txt  from the default folder
       filewin:/C:/Data/a.txt      a line of a reference (also imagewin:, moviewin:)
       .T/a.txt                    in a special folder: .A of the program, .D desktop, .R root of the system's
                                   drive, .S system, .T temporary, .W Windows; .U and .V ask in a dialog. The
                                   letter alone counts: .Trash is the temporary folder itself, so name hidden
                                   files by absolute paths)",
     R"(Empty text; for .V the name of the file that was chosen. At the start the folder is the root of the system's
drive.)",
     R"($CODE:MESSAGE as the result:
0      the dialog was cancelled, or the path leads to no folder
20102  the path is no text
other codes of paths: -43 no such item, -120 no such folder or drive, -50 no such form of a path, 53 no such share,
123 no valid name, 555 a container that holds the file itself, 996 no such special folder)",
     R"(Media_SetDefaultFolder ( "/C:/home/ann" ) & Media_GetDefaultFolder)", "/C:/home/ann"},
    {"Media_GetDefaultFolder", "The folder from which relative paths count.", "", "Text: its path.",
     "$20100:MESSAGE as the result: there are parameters", "Media_GetDefaultFolder", "/C:"},
    {"Media_CopyItem", "Copies a file, or a folder with all that is in it.",
     R"(source    path of the item
dest      an existing folder, into which the copy goes under its own name; or a name in an existing folder
replace   true: what is there is overwritten)",
     R"(Empty text. Times, permissions and extended attributes are copied too. A link that is named is copied as what it
leads to; those in a folder stay links.)",
     R"($CODE:MESSAGE as the result:
-43    there is no such item
-120   there is no such folder
-1407  the folder of the destination is none
7      the destination is there, and replace is false
other codes of paths and of the system: 5 no permission, 112 disk full, 118 into itself)",
     R"(Media_CopyItem ( "/C:/home/ann/a.txt" ; "/C:/home/ann/b.txt" ; False ) &
Media_ListFolder ( "/C:/home/ann/" ; False ))",
     "…b.txt…"},
    {"Media_MoveItem", "Moves a file or a folder into another folder, where it replaces its namesake.",
     R"(source   path of the item
dest     path of an existing folder; it may be on another drive)",
     "Empty text.",
     R"($CODE:MESSAGE as the result:
-43    there is no such item, or no such folder
-1407  the destination is a file
other codes of paths and of the system)",
     R"(Media_MoveItem ( "/C:/home/ann/a.txt" ; "/C:/home/ann/Archive" ) &
Media_ListFolder ( "/C:/home/ann/Archive" ; False ))",
     "a.txt"},
    {"Media_DeleteItem", "Deletes a file, or a folder with all that is in it, for good.",
     R"(item         path of the item
folderFlag   true: it may be a folder)",
     "Empty text.",
     R"($CODE:MESSAGE as the result:
-43    there is no such item
-1302  a folder, and folderFlag is false
other codes of paths and of the system: 5 no permission, 32 a file that is in use)",
     R"(Media_DeleteItem ( "/C:/home/ann/Archive" ; False ))",
     "$-1302:folderFlag must be set to delete a directory"},
    {"Media_RenameItem", "Gives a file or a folder another name where it is.",
     R"(item      path of the item
newName   a name, no path)",
     "Empty text.",
     R"($CODE:MESSAGE as the result:
-43  there is no such item
123  the name has characters that names can't have
126  there is a file of that name, 128 a folder
other codes of paths and of the system)",
     R"(Media_RenameItem ( "/C:/home/ann/a.txt" ; "Größe.txt" ) &
Media_GetName ( "/C:/home/ann/größe.txt" ))",
     "größe.txt"},
    {"Media_CreateFolder", "Makes a folder.",
     R"(enclosingFolder   path of an existing folder
newFolderName     a name, no path)",
     "Empty text.",
     R"($CODE:MESSAGE as the result:
-43    there is no such folder
-1407  the enclosing folder is a file
123    the name has characters that names can't have
183    there is an item of that name
other codes of paths and of the system)",
     R"(Media_CreateFolder ( "/C:/home/ann" ; "Archive" ))", "$183:CreateFolder failed"},
    {"Media_ListFolder", "The names of a folder's entries, in the order of the file system.",
     R"(enclosingFolder   path of a folder
listAll           true: folders, hidden entries and shortcuts too)",
     R"(Text, a line for each entry. With listAll a folder has the mark "ƒ" in front, a hidden entry "~", a shortcut
"^". A name that begins with a point is hidden, as is a file with the hidden bit of a file server.)",
     R"($CODE:MESSAGE as the result:
-43    there is no such folder
-1407  it is a file
other codes of paths)",
     R"(Media_ListFolder ( "/C:/home" ; True ))", "ƒann"},
    {"Media_GetItemInfo", "The facts of a file or a folder.", "item   path of the item",
     R"(Text: lines Created, Modified (day-month-year hour:minute:second, local time), Invisible and Directory
(1 or 0); for a file also Data size (b), Locked (read-only), Alias (a shortcut) and Type (the name's extension).
The size is that of its low 32 bits.)",
     R"($CODE:MESSAGE as the result:
-43  there is no such item
other codes of paths and of the system)",
     R"(Media_GetItemInfo ( "/C:/home/ann/a.txt" ))",
     R"(Created: …
Modified: …
Invisible: 0
Directory: 0
Data size (b): 5
Locked: 0
Alias: 0
Type: txt)"},
    {"Media_CreateAlias", "Makes a shortcut: a file that leads to an item.",
     R"(targetItem   path of an item
alias        path of the shortcut, without ".lnk", which is added)",
     "Empty text. The file has the documented format of shell links, which others read too.",
     R"($CODE:MESSAGE as the result:
0     there is an item with the name of the alias, without ".lnk"; a shortcut that is there is replaced,
       unless it is read-only
-43   there is no such target
-120  there is no such folder
other codes of paths and of the system)",
     R"(Media_CreateAlias ( "/C:/home/ann/a.txt" ; "/C:/home/ann/Archive/link" ) &
Media_ListFolder ( "/C:/home/ann/Archive" ; True ))",
     "^link.lnk"},
    {"Media_OpenItem",
     "Opens an item as a double click does: a document in its program, a shortcut's target.",
     "item   path of the item",
     R"(Empty text. The program that opens is xdg-open, or that of the variable CORVANE_OPENER.)",
     R"($CODE:MESSAGE as the result:
-34  it could not be opened
-43  there is no such item
other codes of paths)",
     R"(Media_OpenItem ( "/C:/home/ann/none.pdf" ))", "$-43:OpenItem failed"},
    {"Media_ListDisks", "The roots of the drives.", "", R"(Text: roots joined by "|".)",
     "$20100:MESSAGE as the result: there are parameters", "Media_ListDisks", R"(C:\)"},
    {"Media_GetPath", "The path of an item, or of one of the folders that it lies in.",
     R"(container   path of an item that need not exist, or a container with a reference
levels      how many folders upward; without it 0)",
     "Text: the path.", R"($CODE:MESSAGE as the result:
-120  there is no such folder
other codes of paths)",
     R"(Media_GetPath ( "/C:/home/ann/a.txt" ; 1 ))", "/C:/home/ann"},
    {"Media_GetName", "The name of an item.",
     "container   path of an item that need not exist, or a container with a reference",
     "Text: the name; of a drive's root the drive.",
     R"($CODE:MESSAGE as the result:
-120  there is no such folder
other codes of paths)",
     R"(Media_GetName ( HostReference ( "size:0,0¶file:a.txt¶filewin:/C:/home/ann/a.txt" ) ))", "a.txt"},
});

} // namespace

const ManualGroup kFileManual = {"Files and folders", kNames, kPages};

} // namespace host
