"""Four-point warp of NumPy pictures, in true perspective."""

from ._vantorel import Error, __version__, bounding_box, homography, read_corners, warp

__all__ = ["Error", "__version__", "bounding_box", "homography", "read_corners", "warp"]
