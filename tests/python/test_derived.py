"""Derived quantities against closed forms."""

import numpy as np
import pytest

from zrfx import derived

ROTATION = np.linalg.qr(np.random.default_rng(3).normal(size=(3, 3)))[0]


def tensor(matrix):
    return np.array([matrix[0][0], matrix[1][1], matrix[2][2], matrix[0][1], matrix[1][2], matrix[2][0]])


ROTATED = tensor(ROTATION @ np.diag([7, -2, 3]) @ ROTATION.T)


@pytest.mark.parametrize("stress, mises, principal", [
    ([100, 0, 0, 0, 0, 0], 100, [100, 0, 0]),  # uniaxial
    ([0, 0, 0, 0, 10, 0], np.sqrt(300), [10, 0, -10]),  # pure shear in each plane
    ([0, 0, 0, 0, 0, 10], np.sqrt(300), [10, 0, -10]),
    ([0, 0, 0, 10, 0, 0], np.sqrt(300), [10, 0, -10]),
    ([-5, -5, -5, 0, 0, 0], 0, [-5, -5, -5]),  # hydrostatic
    ([80, -40, 0, 30, 0, 0], np.sqrt(80**2 + 80 * 40 + 40**2 + 3 * 30**2), [20 + 4500**0.5, 0, 20 - 4500**0.5]),
    (ROTATED, np.sqrt((81 + 25 + 16) / 2), [7, 3, -2]),
])
def test_tensors_have_the_values_of_closed_forms(stress, mises, principal):
    many = np.array([stress, stress], float)
    assert derived.von_mises(many) == pytest.approx(mises)
    assert derived.principal_values(many)[1] == pytest.approx(np.array(principal))
    assert derived.maximum_shear(many)[0] == pytest.approx((principal[0] - principal[2]) / 2)
    directions = derived.principal_directions(many)[0]
    rebuilt = sum(value * np.outer(axis, axis) for value, axis in zip(principal, directions))
    assert tensor(rebuilt) == pytest.approx(np.array(stress), abs=1e-9)
    assert derived.standard_strain(many)[0] == pytest.approx(np.array(stress) / [1, 1, 1, 2, 2, 2])


@pytest.mark.parametrize("missing", [np.nan, 2.99e38, np.inf])
@pytest.mark.parametrize("function, components", [
    (derived.magnitude, 3), (derived.von_mises, 6), (derived.principal_values, 6), (derived.maximum_shear, 6),
    (derived.principal_directions, 6)])
def test_undefined_values_stay_undefined(function, components, missing):
    array = np.ones((2, components), np.float32)
    array[0, 1] = missing
    plain, masked = function(array), function(np.ma.masked_array(np.ones((2, components)), array != 1))
    assert plain.dtype == np.float32 and np.isnan(plain[0]).all() and not np.isnan(plain[1]).any()
    assert masked.mask[0].all() and not masked.mask[1].any()


def test_lengths():
    assert derived.magnitude([[3, 4, 0], [1, 2, 2]]).tolist() == [5, 3]
