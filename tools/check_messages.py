#!/usr/bin/env python3
"""Check include/kor/messages.def, the table of NE_/NW_ message templates.

Usage: tools/check_messages.py [path/to/messages.def]
Prints a summary and exits with status 1 if any check fails.
"""
import re
import sys
from pathlib import Path

DEF = Path(sys.argv[1]) if len(sys.argv) > 1 else \
    Path(__file__).resolve().parent.parent / 'include' / 'kor' / 'messages.def'

ROW = re.compile(r'KOR_MESSAGE\((\d+), (N[EW]_[A-Z0-9_]+), "((?:[^"\\\n]|\\.)*)"\)$')
# A printf conversion: flags, width, precision, optional l, conversion letter.
CONV = re.compile(r'%(%|[-+#0]*\d*(?:\.\d+)?l?[sdgefxc])')
LAST_LISTED = 744          # codes 0..744 form the standard list
UNUSED = {716, 745}        # never reported, must have no row
N_LISTED, N_WARNINGS = 744, 38
ONE_BLANK_OK = {72}        # NE_ARG_INVALID keeps its "\n Constraint" line

# Rows whose text is fixed by the interface and must not change.
FIXED = {
    0: 'No error.',
    1: 'Error code has not been set by the last function called.',
    3: 'Too many iterations (%ld).',
    4: 'On entry, %s must not be equal to %s: %s = %g.',
    9: 'On entry, %s = %g. \n  This parameter must satisfy %s.',
    70: 'On entry, parameter %s had an illegal value.',
    71: 'On entry, parameter number %1ld had an illegal value.',
    72: 'On entry, %s = %1ld.\n Constraint: %s must be one of %s.',
    73: 'Memory allocation failed.',
    74: 'An internal error has occurred in this function.\n  Check the function call and any array '
        'sizes. If the call is correct\n  then please consult KOR for assistance.',
    100: 'On entry, %s = %g.\n  Constraint: %s.',
    101: 'On entry, %s = %g, %s = %g.\n  Constraint: %s.',
    139: 'On entry, f(%s) and f(%s) have the same sign, with f(%s) != 0.0.',
    140: 'Indicates that the function values in the interval %s might\n  contain a pole rather than a '
         'zero. Reducing xtol may help\n  in distinguishing between a pole and a zero.',
    555: 'On entry, the value of %s is too small.',
}


def unescape(s):
    return re.sub(r'\\(.)', lambda m: {'n': '\n', 't': '\t'}.get(m.group(1), m.group(1)), s)


def main():
    text = re.sub(r'/\*.*?\*/', '', DEF.read_text(), flags=re.S)
    rows, errors = [], []
    for n, line in enumerate(text.splitlines(), 1):
        if not line.strip():
            continue
        m = ROW.match(line.strip())
        if not m:
            errors.append(f'line {n}: not a KOR_MESSAGE row: {line.strip()[:60]}')
            continue
        rows.append((int(m.group(1)), m.group(2), unescape(m.group(3))))

    codes = [c for c, _, _ in rows]
    names = [nm for _, nm, _ in rows]
    if any(b <= a for a, b in zip(codes, codes[1:])):
        errors.append('codes are not strictly increasing')
    for c in sorted(UNUSED & set(codes)):
        errors.append(f'code {c} must be unused')
    dups = sorted({nm for nm in names if names.count(nm) > 1})
    if dups:
        errors.append('names appear twice: ' + ', '.join(dups))
    listed = [r for r in rows if r[0] <= LAST_LISTED + 1]
    if len(listed) != N_LISTED:
        errors.append(f'{len(listed)} rows in 0..745, expected {N_LISTED}')
    warnings = sum(nm.startswith('NW_') for _, nm, _ in listed)
    if warnings != N_WARNINGS:
        errors.append(f'{warnings} NW_ names in 0..745, expected {N_WARNINGS}')

    for code, name, msg in rows:
        indent = ' ' if code in ONE_BLANK_OK else '  '
        for after in msg.split('\n')[1:]:
            if not after.startswith(indent) or after[len(indent):].startswith(' '):
                errors.append(f'{code} {name}: a new line must start with two blanks')
        if not msg.strip() or msg != msg.strip():
            errors.append(f'{code} {name}: empty text or stray blanks at the ends')
        if msg.count('%') != 2 * msg.count('%%') + len([c for c in CONV.findall(msg) if c != '%']):
            errors.append(f'{code} {name}: malformed printf conversion')
        if code in FIXED and msg != FIXED[code]:
            errors.append(f'{code} {name}: fixed text has changed')

    extra = [f'{c} {nm}' for c, nm, _ in rows if c > LAST_LISTED + 1]
    print(f'{DEF}: {len(rows)} rows; codes {codes[0] if codes else "-"}..{codes[-1] if codes else "-"}')
    print(f'  0..745: {len(listed)} rows ({len(listed) - warnings} NE_, {warnings} NW_)')
    print(f'  from 746: {len(extra)} rows: ' + ', '.join(extra))
    for e in errors:
        print('ERROR:', e)
    print('FAILED' if errors else 'OK')
    return 1 if errors else 0


if __name__ == '__main__':
    sys.exit(main())
