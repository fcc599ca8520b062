# HelpWords PROGRAM: every option (--name, -x) and every command word that PROGRAM --help lists, one
# a line. Options are taken wherever they stand, also inside a command's usage line; commands are the
# first words of the lines under "Commands:". The program answers without a display.
HelpWords() {
  local help
  help="$(env -u DISPLAY -u WAYLAND_DISPLAY "$1" --help)" || return 1
  {
    grep -oE -- '(^|[^[:alnum:]-])--?[a-z][a-z-]*' <<<"$help" | grep -oE -- '--?[a-z][a-z-]*'
    sed -n '/^Commands:/,/^$/s/^  \([a-z][a-z-]*\).*/\1/p' <<<"$help"
  } | sort -u
}
