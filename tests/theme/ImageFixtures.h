// Small image files made outside our codecs (by hand with zlib, and by
// libjpeg directly), as Base64, with what they hold.
#pragma once

// 2 × 2 RGBA PNG, rows top down: opaque red, green at alpha 128;
// blue at alpha 0, white at alpha 64.
inline constexpr char kPNG2x2Base64[] =
    "iVBORw0KGgoAAAANSUhEUgAAAAIAAAACCAYAAABytg0kAAAAFUlEQVR42mP4z8DwHwgbGMD0//8OAD8YB7qSpF8lAAAAAElFTkSuQmCC";

// 1-bit grey PNGs, one row of black pixels, 16384 and 16385 pixels wide.
inline constexpr char kPNGWidest[] =
    "iVBORw0KGgoAAAANSUhEUgAAQAAAAAABAQAAAAAO5Iv1AAAAF0lEQVR42mNgGAWjYBSMglEwCkbBiAMACAEAAfRT8E0AAAAASUVORK5CYII=";
inline constexpr char kPNGTooWide[] =
    "iVBORw0KGgoAAAANSUhEUgAAQAEAAAABAQAAAADhJuDLAAAAF0lEQVR42mNgGAWjYBSMglEwCkbByAMACAIAAbIeO20AAAAASUVORK5CYII=";

// 16 × 8 baseline JPEG at quality 95: left half pure red, right half pure blue.
inline constexpr char kJPEGRedBlueBase64[] =
    "/9j/4AAQSkZJRgABAQAAAQABAAD/2wBDAAIBAQEBAQIBAQECAgICAgQDAgICAgUEBAMEBgUGBgYFBgYGBwkIBgcJBwYGCAsICQoKCgoKBggLDAsKDAkKCgr/"
    "2wBDAQICAgICAgUDAwUKBwYHCgoKCgoKCgoKCgoKCgoKCgoKCgoKCgoKCgoKCgoKCgoKCgoKCgoKCgoKCgoKCgoKCgr/wAARCAAIABADASIAAhEBAxEB/"
    "8QAHwAAAQUBAQEBAQEAAAAAAAAAAAECAwQFBgcICQoL/8QAtRAAAgEDAwIEAwUFBAQAAAF9AQIDAAQRBRIhMUEGE1FhByJxFDKBkaEII0KxwRVS0fAkM2Jy"
    "ggkKFhcYGRolJicoKSo0NTY3ODk6Q0RFRkdISUpTVFVWV1hZWmNkZWZnaGlqc3R1dnd4eXqDhIWGh4iJipKTlJWWl5iZmqKjpKWmp6ipqrKztLW2t7i5usLDx"
    "MXGx8jJytLT1NXW19jZ2uHi4+Tl5ufo6erx8vP09fb3+Pn6/8QAHwEAAwEBAQEBAQEBAQAAAAAAAAECAwQFBgcICQoL/8QAtREAAgECBAQDBAcFBAQAAQJ3AA"
    "ECAxEEBSExBhJBUQdhcRMiMoEIFEKRobHBCSMzUvAVYnLRChYkNOEl8RcYGRomJygpKjU2Nzg5OkNERUZHSElKU1RVVldYWVpjZGVmZ2hpanN0dXZ3eHl6goOE"
    "hYaHiImKkpOUlZaXmJmaoqOkpaanqKmqsrO0tba3uLm6wsPExcbHyMnK0tPU1dbX2Nna4uPk5ebn6Onq8vP09fb3+Pn6/9oADAMBAAIRAxEAPwD4vr5Door+qP"
    "2Zf/NV/wDcj/7uH9qftDP+aZ/7nf8A3UP/2Q==";
