#pragma once

// A span of data values along one axis. A negative length runs the axis backwards: location is
// then the value at the start (left or bottom) and location + length the value at the end.
namespace plot {

struct Range {
    double location = 0.0;
    double length = 1.0;

    double start() const { return location; }
    double end() const { return location + length; }
    double minimum() const { return length < 0.0 ? end() : start(); }
    double maximum() const { return length < 0.0 ? start() : end(); }
    bool contains(double value) const { return value >= minimum() && value <= maximum(); }

    // Where a value falls along a pixel span that starts at pixelStart and runs pixelLength
    // (negative for an upward y axis). A range of zero length maps everything to the start.
    double toPixel(double value, double pixelStart, double pixelLength) const
    {
        if (length == 0.0)
            return pixelStart;
        return pixelStart + (value - location) / length * pixelLength;
    }
    double fromPixel(double pixel, double pixelStart, double pixelLength) const
    {
        if (pixelLength == 0.0)
            return location;
        return location + (pixel - pixelStart) / pixelLength * length;
    }

    bool operator==(const Range&) const = default;
};

} // namespace plot
