"""A picture of a line: the track coloured by depth and the attitude series."""

import numpy as np

from .line import Line


def line(path, out="line.png", depth="ObservedDepths", dpi=110):
    """Draws the line at path into the PNG file out and returns out.

    The track (navigation, degrees) is coloured by the mean depth of the ping
    nearest in time; beside it pitch and roll (degrees), heave (metres) and
    gyro (degrees) against minutes from the line's start, each when present.
    Matplotlib's pyplot state is not touched (an Agg canvas of our own)."""
    from matplotlib.backends.backend_agg import FigureCanvasAgg
    from matplotlib.figure import Figure

    ln = Line(path)
    sensors = ln.sensors
    nav = ln.read("Navigation") if "Navigation" in sensors else None
    attitude = [(f, unit) for f, unit in (("Pitch", "deg"), ("Roll", "deg"), ("Heave", "m"), ("Gyro", "deg"))
                if f in sensors]

    fig = Figure(figsize=(11, 6.5), layout="constrained")
    FigureCanvasAgg(fig)
    grid = fig.add_gridspec(max(len(attitude), 1), 2, width_ratios=(1.15, 1))
    track = fig.add_subplot(grid[:, 0])
    start = nav["time"][0] if nav is not None else None

    if nav is not None:
        lon, lat = np.degrees(nav["longitude"]), np.degrees(nav["latitude"])
        colour, label = nav["time"] - start, "seconds from start"
        if depth in sensors:
            d = ln.read(depth)
            offsets = d["beams"]["beam_offsets"]
            counts = np.diff(offsets)
            sums = np.add.reduceat(d["beams"]["depth"], offsets[:-1][counts > 0]) if counts.any() else []
            mean = np.full(counts.size, np.nan)
            mean[counts > 0] = np.asarray(sums) / counts[counts > 0]
            colour, label = np.interp(nav["time"], d["profiles"]["time"], mean), "mean depth (m)"
        points = track.scatter(lon, lat, c=colour, s=10, cmap="viridis_r" if "depth" in label else "viridis")
        fig.colorbar(points, ax=track, label=label, shrink=0.8)
        track.plot(lon[:1], lat[:1], "k^", label="start")
        track.legend(loc="best")
        track.set_xlabel("longitude (deg)")
        track.set_ylabel("latitude (deg)")
        track.set_aspect(1.0 / np.cos(np.radians(np.nanmean(lat))), adjustable="datalim")
        track.ticklabel_format(useOffset=False)
    track.set_title(f"Track of {ln.path.rstrip('/').split('/')[-1]}")

    for row, (family, unit) in enumerate(attitude):
        ax = fig.add_subplot(grid[row, 1])
        series = ln.read(family)
        t0 = start if start is not None else series["time"][0]
        values = np.degrees(series["value"]) if unit == "deg" else series["value"]
        ax.plot((series["time"] - t0) / 60.0, values, lw=0.8)
        ax.set_ylabel(f"{family} ({unit})")
        ax.grid(alpha=0.3)
        if row == len(attitude) - 1:
            ax.set_xlabel("minutes from start")
        else:
            ax.tick_params(labelbottom=False)
    fig.savefig(out, dpi=dpi)
    return out
