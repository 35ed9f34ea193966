# What the bridge's commands share: places and messages. Read with ".", never run.
# shellcheck shell=sh disable=SC2034 # the commands use what is set here

spool=/usr/spool/lp
printers=$spool/admins/lp/printers
interfaces=$spool/admins/lp/interfaces
models=$spool/model
queue_ppd=/usr/share/kpx/kpxlp.ppd

# die STATUS MESSAGE...: says what is wrong and ends the command.
die() {
  status=$1
  shift
  echo "${0##*/}: $*" >&2
  exit "$status"
}

# need_name NAME: ends the command unless NAME can be a queue's name: 1 to 127 characters, none of
# them a control character, blank, or one that the shell or CUPS reads as something else.
need_name() {
  case $1 in
    '') die 1 "the queue has no name" ;;
    -*) die 1 "\"$1\" is no queue name: it begins with a hyphen" ;;
    *[!A-Za-z0-9_+-]*)
      # Letters beyond ASCII are good; everything else in ASCII is not.
      rest=$(printf %s "$1" | LC_ALL=C tr -d 'A-Za-z0-9_+\200-\377-')
      [ -z "$rest" ] || die 1 "\"$1\" is no queue name: it has characters that a name cannot hold"
      ;;
  esac
  [ "$(printf %s "$1" | wc -c)" -le 127 ] || die 1 "\"$1\" is no queue name: it is too long"
}

# need_cups: ends the command when the spooler cannot be asked.
need_cups() {
  command -v lpstat >/dev/null || die 1 "CUPS is not installed: there is no lpstat"
  LC_ALL=C lpstat -r 2>/dev/null | grep -q '^scheduler is running' ||
    die 1 "the CUPS scheduler does not answer; start it (cupsd) and try again"
}

# need_queue NAME: ends the command unless NAME is a queue of the bridge.
need_queue() {
  [ -e "$printers/$1" ] || die 1 "there is no queue \"$1\""
}
