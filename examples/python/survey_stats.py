#!/usr/bin/env python3
"""Per-line and whole-survey statistics of one sensor column over every line
of a survey, computed on a Dask cluster: one partition per line, each read by
a worker from the shared survey directory.

    survey_stats.py SURVEY_DIR [--sensor ObservedDepths] [--column depth]
                    [--scheduler tcp://HOST:8786]

Without --scheduler a cluster of worker processes starts on this machine."""

import argparse
import sys

import dask

import velmio.dask as vd

STATISTICS = ["count", "mean", "min", "max", "std"]


def survey_stats(paths, sensor="ObservedDepths", column="depth"):
    """(per-line pandas DataFrame, whole-survey dict) of column over lines."""
    frame = vd.read_lines(paths, sensor, frame=True)
    values = frame[column]
    per_line = frame.groupby("line", observed=True)[column].agg(STATISTICS)
    overall = {s: getattr(values, s)() for s in STATISTICS}
    per_line, overall = dask.compute(per_line, overall)
    return per_line.sort_index(), {k: float(v) for k, v in overall.items()}


def main(argv=None):
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("survey", help="directory searched for line directories")
    parser.add_argument("--sensor", default="ObservedDepths")
    parser.add_argument("--column", default="depth")
    parser.add_argument("--scheduler", help="address of a running dask-scheduler")
    parser.add_argument("--workers", type=int, default=2, help="local worker processes (without --scheduler)")
    args = parser.parse_args(argv)

    from distributed import Client, LocalCluster

    lines = vd.find_lines(args.survey, args.sensor)
    if not lines:
        print(f"no line with {args.sensor} under {args.survey}", file=sys.stderr)
        return 1
    cluster = None if args.scheduler else LocalCluster(n_workers=args.workers, threads_per_worker=1)
    with Client(args.scheduler or cluster):
        per_line, overall = survey_stats(lines, args.sensor, args.column)
    if cluster:
        cluster.close()
    print(per_line.to_string())
    print(f"\nsurvey: {len(lines)} lines, " + ", ".join(f"{k} {v:.6g}" for k, v in overall.items()))
    return 0


if __name__ == "__main__":
    sys.exit(main())
