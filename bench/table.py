#!/usr/bin/python3
"""Prints the benchmark results (Google Benchmark JSON) as one Markdown table:
operation, VelmIO, raw limit, ratio (wall and CPU time), target; the machine on top."""
import json
import os
import platform
import sys

OPERATIONS = {
    'PerRecordWrite': ('per-record write', 'rate', 0.7),
    'BulkWrite': ('bulk write', 'rate', 0.8),
    'PerRecordRead': ('per-record sequential read', 'rate', 0.9),
    'BulkRead': ('bulk read', 'rate', 0.9),
    'RandomRead': ('random Read', 'time', 1 / 1.5),
    'OpenForQuery': ('open for query', 'time', 1 / 2.0),
    'UTMForward': ('UTM forward per point (raw: PROJ proj_trans)', 'time', None),
    'UTMInverse': ('UTM inverse per point (raw: PROJ proj_trans)', 'time', None),
    'VesselOpen': ('open a vessel configuration of 1000 entries', 'time', None),
    'VesselGyroQuery': ('gyro query of a vessel with 1000 entries', 'time', None),
}
PROFILE_FAMILIES = ('ObservedDepths', 'TPE')


def machine():
    model = 'unknown CPU'
    try:
        with open('/proc/cpuinfo') as info:
            for line in info:
                if line.startswith('model name'):
                    model = line.split(':', 1)[1].strip()
                    break
    except OSError:
        pass
    return '%s, %d cores, %s %s' % (model, os.cpu_count() or 0, platform.system(), platform.release())


def size(records):
    return '%g M' % (records / 1e6) if records >= 1000000 else '%g k' % (records / 1e3)


def rate(per_second, unit):
    return '%.3g M %s/s' % (per_second / 1e6, unit)


def duration(per_second):
    seconds = 1.0 / per_second
    for scale, name in ((1.0, 's'), (1e-3, 'ms'), (1e-6, 'µs')):
        if seconds >= scale:
            return '%.3g %s' % (seconds / scale, name)
    return '%.3g ns' % (seconds / 1e-9)


def order(b):
    """Operations in the table's order, then family, then line size."""
    parts = b['name'].split('/')
    family = parts[1] if len(parts) > 1 else ''
    return (list(OPERATIONS).index(parts[0]) if parts[0] in OPERATIONS else len(OPERATIONS),
            family.split('+')[0], family, b['name'].count(':1000000'))


def rows(benchmarks):
    for b in sorted(benchmarks, key=order):
        if b.get('run_type') == 'aggregate' or 'error_occurred' in b:
            continue
        parts = b['name'].split('/')
        if parts[0] not in OPERATIONS:
            continue
        title, kind, target = OPERATIONS[parts[0]]
        fields = dict(p.split(':', 1) for p in parts[1:] if ':' in p)
        family = parts[1] if len(parts) > 1 and ':' not in parts[1] and not parts[1].endswith('_time') else ''
        if 'records' in fields:
            unit = 'beams' if family.split('+')[0] in PROFILE_FAMILIES else 'records'
            line = '%s, %s %s' % (family.replace('+cache', ' with VelmIOCacheSize=64'), size(int(fields['records'])),
                                  unit)
        else:
            unit, line = 'records', family
        velmio = b.get('velmio_per_s', b.get('items_per_second'))
        raw = b.get('raw_per_s')
        show = (lambda v: rate(v, unit)) if kind == 'rate' else duration
        ratio = lambda key: '%.2f' % b[key] if key in b else '-'
        yield '| %s | %s | %s | %s | %s | %s | %s |' % (
            title, line or '-', show(velmio) if velmio else '-', show(raw) if raw else '-', ratio('ratio'),
            ratio('cpu_ratio'), '≥ %.2f' % target if target else '-')
        if 'peak_extra_bytes' in b:
            mapped = b.get('mapped_file_bytes', 0)
            yield '| peak memory above the caller\'s arrays | %s | %.0f KiB%s | - | - | - | ≤ 1024 KiB |' % (
                line, b['peak_extra_bytes'] / 1024,
                ' (and %.0f MiB of mapped file pages)' % (mapped / 2**20) if mapped > 0 else '')


def main(path):
    with open(path) as f:
        results = json.load(f)
    print('Machine: ' + machine())
    print()
    print('| operation | line | VelmIO | raw limit | ratio | CPU ratio | target |')
    print('|---|---|---|---|---|---|---|')
    for row in rows(results['benchmarks']):
        print(row)
    print()
    print('ratio: VelmIO throughput over the raw limit in the same run, best pass of each (1 = at the limit; for '
          'times, raw time over VelmIO time); CPU ratio: the same from the CPU time of the benchmark thread.')


if __name__ == '__main__':
    main(sys.argv[1])
