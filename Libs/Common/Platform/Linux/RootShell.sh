# shellcheck shell=sh
# The root shell: starts tools for one process, the host, until that closes its end of this shell's input and
# output. sh -c TEXT sh FOLDER STARTTIME ERRORS DRAIN
#
#   FOLDER     the host's in /proc
#   STARTTIME  the host's, as FOLDER/stat has it
#   ERRORS     where the tools' standard error goes
#   DRAIN      the text of Drain.sh
#
# It says "y" once it is ready. A request is a line with a size and a text of that size, which calls Start; the
# answer is "y" or "n".

# An open folder of /proc stays that of one process, and is empty once that has ended, whoever gets its id.
exec 7<"$1" || exit
stat=$(cat </proc/self/fd/7/stat) || exit
startTime=$2 errors=$3 drain=$4
# shellcheck disable=SC2086 # the fields behind the name, which may hold anything
set -- ${stat##*) }
[ "${20}" = "$startTime" ] || exit

if (: >>"$errors") 2>/dev/null; then
  exec 4>>"$errors"
else
  exec 4>/dev/null
fi
# Some shells report what Start does to them.
exec 3>&1 2>/dev/null
trap '' HUP INT QUIT

# What the host has limited for itself is not for root's tools.
umask 022
for limit in t f d v n; do
  # shellcheck disable=SC3045 # every /bin/sh of Linux has these
  { ulimit -H -$limit unlimited; ulimit -S -$limit "$(ulimit -H -$limit)"; }
done

# Start INPUT OUTPUT PROGRAM [ARGUMENT...]
#
# INPUT and OUTPUT are numbers of the host's descriptors. A shell ignores SIGINT and SIGQUIT for good in what it
# starts by "&", so the tool is started in the foreground of a subshell that is killed as soon as both ends of
# the pipe run. nice(1) takes a program's name as it is; env(1) takes one with a "=" for a variable.
Start()
{
  input=/proc/self/fd/7/fd/$1
  output=/proc/self/fd/7/fd/$2
  shift 2
  if [ ! -p "$input" ] || [ ! -p "$output" ] || [ ! -f "$1" ] || [ ! -x "$1" ]; then
    return
  fi
  exec 5<"$input" 6>>"$output" # before the answer, after which the host closes them
  # shellcheck disable=SC2016 # the inner shell expands it
  {
    trap - HUP INT QUIT
    exec env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root nice -n 0 "$@"
  } <&5 2>&4 3>&- 4>&- 5<&- 6>&- 7<&- |
    sh -c 'printf y >&3; exec 3>&-; kill -KILL "$PPID"; exec sh -c "$1"' sh "$drain" \
      >&6 3>&3 4>&- 5<&- 6>&- 7<&-
}

printf y
while IFS= read -r size; do
  request=$(head -c "$size"; printf .)
  if [ "${#request}" -ne $((size + 1)) ]; then
    exit
  fi
  (
    eval "${request%.}"
    exit 1
  )
  [ $? -gt 128 ] || printf n
done
