# Completion for bash: verbs and options as orvicam's help lists them; serial numbers, features and values as the
# attached cameras have them. Load it with: source SDK/share/bash-completion/completions/orvicam

# orvicam with what the line says so far of cameras; whatever takes long is left out.
_orvicam_ask() { timeout 5 "${ask[@]}" "$@" 2>/dev/null; }

# Words of the first column of a part of a help text: "Subcommands" or "Options".
_orvicam_help() {
    local part=$1
    shift
    _orvicam_ask "$@" --help | awk -v part="$part:" '
        $0 == part { inside = 1; next }
        inside && !/^  / { exit }
        inside { n = split($1, names, ","); for (i = 1; i <= n; i++) print names[i] }'
}

# Names of features, or what one of them takes.
_orvicam_features() { _orvicam_ask values "$@" | sed -n 's/^\([A-Za-z0-9_]*\)=.*/\1/p'; }
_orvicam_values() {
    _orvicam_ask describe "$1" --json | awk '
        /"type": "Boolean"/ { print "true"; print "false" }
        /"entries": \[/ { inside = 1; next }
        inside && /\]/ { exit }
        inside { gsub(/[ ",]/, ""); print }'
}

_orvicam() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
    local verbs verb='' i ask=("${COMP_WORDS[0]}")
    # Other words of the line: cameras to ask, and the verb.
    for ((i = 1; i < COMP_CWORD; i++)); do
        case ${COMP_WORDS[i]} in
        -c | --camera | --virtual)
            [ $((i + 1)) -ge "$COMP_CWORD" ] || ask+=("${COMP_WORDS[i]}" "${COMP_WORDS[i + 1]}")
            ((i++))
            ;;
        -*) ;;
        *) [ -n "$verb" ] || verb=${COMP_WORDS[i]} ;;
        esac
    done

    COMPREPLY=()
    local candidates=''
    # Bash makes three words of Feature=Value.
    if [ "$word" = = ] || { [ "$before" = = ] && [ "$COMP_CWORD" -ge 3 ]; }; then
        local at=$((COMP_CWORD - 1))
        [ "$word" = = ] && word='' || at=$((COMP_CWORD - 2))
        candidates=$(_orvicam_values "${COMP_WORDS[at]}")
    elif [ "$before" = -c ] || [ "$before" = --camera ]; then
        candidates=$(_orvicam_ask list --json | sed -n 's/.*"serial": "\(.*\)".*/\1/p')
    elif [ "$before" = --virtual ]; then
        compopt -o default 2>/dev/null
    elif [ "$before" = --format ] || [ "$before" = -f ]; then
        candidates='png pgm ppm raw'
    elif [[ $word == -* ]]; then
        candidates="$(_orvicam_help Options) $([ -z "$verb" ] || _orvicam_help Options "$verb")"
    elif [ -z "$verb" ]; then
        candidates=$(_orvicam_help Subcommands)
    else
        case $verb in
        get | describe) candidates=$(_orvicam_features) ;;
        set | grab | events)
            if [ "$verb" = set ] || [ "$before" = --set ] || [ "$before" = -s ]; then
                candidates=$(_orvicam_features --writable | sed 's/$/=/')
                compopt -o nospace 2>/dev/null
            fi
            ;;
        vcam)
            if [[ " ${COMP_WORDS[*]:0:COMP_CWORD} " == *' check '* ]]; then
                compopt -o default 2>/dev/null
            else
                candidates=$(_orvicam_help Subcommands vcam)
            fi
            ;;
        save | load) compopt -o default 2>/dev/null ;;
        esac
    fi
    mapfile -t COMPREPLY < <(compgen -W "$candidates" -- "$word")
}

complete -F _orvicam orvicam
