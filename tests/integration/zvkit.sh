#!/usr/bin/env bash
# Drives zvkit as a script would: exit codes, and standard output for results alone. Usage: zvkit.sh PATH-OF-ZVKIT
set -u
zvkit=$1
home=$(mktemp -d)
export XDG_DATA_HOME=$home TMPDIR=$home
coproc serving { exec "$zvkit" emulator; }
trap 'kill "$serving_PID"; rm -rf "$home"' EXIT
read -r -u "${serving[0]}" line && address=${line##* }
read -r -u "${serving[0]}" line && authority=${line##* }

failed=0
# expect EXIT-CODE STANDARD-OUTPUT WHAT-STANDARD-ERROR-HOLDS ARGUMENT... leaves its standard output in `got`.
expect() {
  local code=$1 output=$2 error=$3
  shift 3
  got=$("$zvkit" "$@" 2>"$home/error")
  local status=$?
  if [ $status -ne "$code" ] || [[ ! $got =~ $output ]] || ! grep -qF -- "$error" <(cat "$home/error" && echo); then
    printf 'zvkit %s\n  exit code %s, wanted %s\n  output %s\n  error %s\n' "$*" $status "$code" "$got" "$(cat "$home/error")"
    failed=1
  fi
}
call() {
  local code=$1 output=$2 error=$3
  shift 3
  expect "$code" "$output" "$error" call "$@" --keychain file --firebase-token firebase-alice \
    --connect-to "$address" --ca-file "$authority"
}

call 0 '^\{"id":"post-bob"\}$' '' content.post '{"for": "post-bob"}'
call 0 '^$' '' content.deleteComments '{"commentIds": [], "on": "post-bob", "by": "bob"}'
call 0 '"content":"hi"' '[ZAK] request : POST /content/comments' content.addComment \
  '{"comment": "hi", "on": "post-bob", "by": "bob"}' -v
printf picture >"$home/picture"
photo=https://storage.zolvi.example/zolvi-photos-dev/Photos/bob/post/back.jpg
call 0 '^\{"url":' '' upload.askInstantQuibletUploadUrl
call 0 '^$' 'Google Bucket answer' upload.upload "{\"data\": \"@$home/picture\", \"with\": $got}" -v
call 0 '"profilePicture"' '' profile.updateProfilePicture "{\"data\": \"@$home/picture\", \"name\": \"me.jpg\"}"
call 0 '2022 Video' '' memories.getVideo "{\"url\": \"$photo\", \"force\": true, \"recapName\": \"2022\"}"
call 1 '^$' '"statusCode": 404' content.post '{"for": "nothing"}'
call 1 '^$' 'URL not valid' content.post '{"for": ".."}'
call 2 '^$' 'missing argument "for"' content.post '{}'
call 2 '^$' 'unknown argument "x"' content.post '{"for": "p", "x": 1}'
call 2 '^$' 'argument "for"' content.post '{"for": 5}'
call 2 '^$' 'must be one of' content.updateVisibility '{"visibility": "nonsense"}'
call 2 '^$' 'argument "events"' analytics.send '{"events": [1]}'
call 2 '^$' 'not JSON' content.post '{'
call 2 '^$' 'not JSON' content.post '{"for": 1e999}'
call 2 '^$' 'no operation "content.nothing"' content.nothing
expect 2 '^$' '--connect-to' call content.post '{"for": "p"}' --connect-to nowhere
expect 2 '^$' 'environment' call content.post '{"for": "p"}' --environment staging
expect 0 'content.addComment\(comment: string, on: string, by: string\)' '' list
exit $failed
