#!/usr/bin/env bash
# Makes Qlex known to the user's desktop: an entry in the application menu with its icon, and the file type
# of scenes, so that a double click on a scene opens it in Qlex. Everything goes under the user's data
# folder, ${XDG_DATA_HOME:-~/.local/share}. A file whose content is in place already is left untouched and
# the desktop's caches are only rebuilt after a change, so installing twice changes nothing.
#
# Usage: install-desktop.sh STAGE PROGRAM
#   STAGE    a staged tree of the build, whose icons/ folder holds the icon in each size
#   PROGRAM  the installed qlex that the menu entry starts
set -euo pipefail

if [ $# -ne 2 ]; then
  echo "Usage: $0 STAGE PROGRAM" >&2
  exit 2
fi
stage=$1
program=$2
case "$program" in
  /*) ;;
  *) program="$PWD/$program" ;;
esac
# A desktop entry is a file of lines: a path with a line break or another control character can't be
# written into one.
if [[ "$program" == *[[:cntrl:]]* ]]; then
  echo "install-desktop.sh: the program's path holds a control character; no desktop entry for it" >&2
  exit 1
fi

# XDG folders are absolute: a relative XDG_DATA_HOME is ignored, as the desktop ignores it.
case "${XDG_DATA_HOME:-}" in
  /*) data_home=$XDG_DATA_HOME ;;
  *) data_home="${HOME:?neither XDG_DATA_HOME nor HOME is set}/.local/share" ;;
esac
applications="$data_home/applications"
mime="$data_home/mime"
icons="$data_home/icons/hicolor"

# Puts standard input into TARGET unless TARGET holds that already; says "changed" when it wrote.
place() {
  local target=$1 dir temp
  dir=$(dirname "$target")
  mkdir -p "$dir"
  temp=$(mktemp "$dir/.qlex-install.XXXXXX")
  cat >"$temp"
  if cmp -s "$temp" "$target"; then
    rm -f "$temp"
  else
    chmod 644 "$temp"
    mv -f "$temp" "$target"
    echo changed
  fi
}

# The text of a string value in a desktop entry: a backslash stands for itself only when doubled.
entry_string() {
  printf '%s' "${1//\\/\\\\}"
}

# The program as the first word of "Exec": always quoted, with the four characters that stay special
# inside quotes escaped, and "%" doubled, as it would start a field code. The whole is then a string value.
exec_word() {
  local word=$1
  word=${word//\\/\\\\}
  word=${word//\"/\\\"}
  word=${word//\`/\\\`}
  word=${word//\$/\\\$}
  word=${word//%/%%}
  entry_string "\"$word\""
}

entry_changed=$(place "$applications/qlex.desktop" <<EOF
[Desktop Entry]
Type=Application
Version=1.0
Name=Qlex
GenericName=Physics Sandbox
Comment=Draw bodies, joints and water, and watch them move
Keywords=physics;sandbox;simulation;water;
Icon=qlex
TryExec=$(entry_string "$program")
Exec=$(exec_word "$program") %f
Terminal=false
Categories=Education;Science;Physics;
MimeType=application/x-qlex-scene;
EOF
)

# A scene is known by its extension, and by the first line that Qlex writes into every scene and qlexlet
# where a file has lost its extension.
mime_changed=$(place "$mime/packages/qlex.xml" <<'EOF'
<?xml version="1.0" encoding="UTF-8"?>
<mime-info xmlns="http://www.freedesktop.org/standards/shared-mime-info">
  <mime-type type="application/x-qlex-scene">
    <comment>Qlex scene</comment>
    <sub-class-of type="text/plain"/>
    <icon name="qlex"/>
    <glob pattern="*.qlx"/>
    <magic priority="80">
      <match type="string" offset="0" value="// Qlex scene created by "/>
      <match type="string" offset="0" value="// Qlexlet created by "/>
    </magic>
  </mime-type>
</mime-info>
EOF
)

icons_changed=
for size in 48 128 256; do
  source_icon="$stage/icons/${size}x${size}/qlex.png"
  if [ ! -f "$source_icon" ]; then
    echo "install-desktop.sh: $source_icon is missing; build Qlex first" >&2
    exit 1
  fi
  icons_changed+=$(place "$icons/${size}x${size}/apps/qlex.png" <"$source_icon")
done

# The caches are rebuilt after a change, or where they are missing; a tool that isn't installed is skipped,
# since the desktop then reads the files themselves.
if command -v update-desktop-database >/dev/null 2>&1 &&
    { [ -n "$entry_changed" ] || [ ! -e "$applications/mimeinfo.cache" ]; }; then
  update-desktop-database -q "$applications" || true
fi
if command -v update-mime-database >/dev/null 2>&1 && { [ -n "$mime_changed" ] || [ ! -e "$mime/mime.cache" ]; }; then
  update-mime-database "$mime" >/dev/null || true
fi
# An icon cache that is there already would hide the new icon; where there is none, none is made.
if [ -n "$icons_changed" ] && [ -e "$icons/icon-theme.cache" ] && command -v gtk-update-icon-cache >/dev/null 2>&1; then
  gtk-update-icon-cache -q -t -f "$icons" || true
fi
