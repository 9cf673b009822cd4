#!/usr/bin/env bash
# tools/english reports each phrase with its line, in comments, messages and documents, and ignores code.
set -euo pipefail
english=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/../.." && pwd)/tools/english

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"

cat >valve.h <<'END'
// The opening hangs
// on the pressure.
inline char const* state() { return "the valve is told to close"; }
// Of which valve the state is. What it does is known.
inline int is_told(int else_) { return '"' + else_; }  // Closed, but for leaks.
END
cat >valve.md <<'END'
Of a valve.

- The seat stands in the body.
- The flow is told. Flows can be told apart.

What is a valve? Nothing else. These are all the same.
END
cat >expected <<'END'
valve.h:1: 'hangs on': write 'depends on'
valve.h:3: 'is told': write 'is reported', 'is shown'
valve.h:4: 'Of which': write begin with the subject: 'The rule that ...', not 'Of what ...'
valve.h:4: 'What it does is known.': write begin with a noun: 'The value that ...', not 'What ...'
valve.h:5: 'but for': write 'except'
valve.md:1: 'Of a': write begin with the subject: 'The rule that ...', not 'Of what ...'
valve.md:3: 'stands in': write 'is in', 'means'
valve.md:4: 'is told': write 'is reported', 'is shown'
English: 8 phrases to replace in 2 files
END
status=0
"$english" valve.h valve.md >output || status=$?
diff -u expected output
[[ $status -eq 1 ]] || { echo "the exit status is $status although there are phrases"; exit 1; }

echo '// The opening depends on the pressure.' >valve.h
[[ $("$english" valve.h) == 'English: 1 files in order' ]] || { echo "a file in order is refused"; exit 1; }
