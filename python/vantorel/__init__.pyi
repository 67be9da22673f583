from os import PathLike
from typing import Any, Literal, Optional, Sequence, Tuple, TypeVar, Union

import numpy as np
from numpy.typing import ArrayLike, NDArray

__version__: str
_Channel = TypeVar("_Channel", np.uint8, np.uint16, np.float32)

class Error(RuntimeError): ...

def warp(
    image: NDArray[_Channel],
    corners: Optional[ArrayLike],
    size: Optional[Tuple[int, int]] = None,
    canvas: Optional[Tuple[int, int, int, int]] = None,
    quality: Literal["standard", "high", "best"] = "high",
    background: Optional[Union[float, Sequence[float]]] = None,
    *,
    from_corners: Optional[ArrayLike] = None,
    premultiplied: bool = False,
    edges: Optional[Literal["soft", "crisp"]] = None,
    samples: int = 0,
    threads: int = 0,
    out: Optional[NDArray[_Channel]] = None,
) -> NDArray[_Channel]: ...
def homography(corners: ArrayLike, size: Tuple[int, int]) -> NDArray[np.float64]: ...
def bounding_box(corners: ArrayLike, size: Tuple[int, int]) -> Tuple[int, int, int, int]: ...
def read_corners(
    path: Union[str, "PathLike[str]"],
    size: Optional[Tuple[int, int]] = None,
    layer_size: Optional[Tuple[int, int]] = None,
) -> Tuple[NDArray[np.float64], NDArray[np.float64]]: ...
