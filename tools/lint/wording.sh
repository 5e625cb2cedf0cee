#!/usr/bin/env bash
# A text here is for whoever has this repository and nothing else: it names no folder of somebody's machine and no
# document that is not in it. The brackets keep this file from finding itself.
cd "$(dirname "${BASH_SOURCE[0]}")/../.." || exit 2
elsewhere='\b[P]arts? [0-9]+\.[0-9]+|\b[A]ppendi(x|ces)\b|\b[Ii]ssues? #?[0-9]+|[s]pec\.md|\b(the|this|our|per) [s]pec(ification)?\b|/[w]ork/|/[f]arm/|/tmp/[b]rief'
git grep --untracked -nIE "$elsewhere" -- . ':!examples/documents'
(($? == 1))
