"""Von Mises and principal stresses; where there is no value, there is none of them."""

import transient_run  # noqa: F401

import zrfx

with zrfx.open("transient_run.zrfx") as f:
    stress = f.models["Impact"].results["STRESS"].at(time=0.3)  # (n, 6): xx, yy, zz, xy, yz, zx
    moves = f.models["Impact"].results["DISP"].at(time=0.3)  # (n, 3)

print("von Mises", zrfx.derived.von_mises(stress).max())
print("principal", zrfx.derived.principal_values(stress)[0])
print("directions", zrfx.derived.principal_directions(stress)[0])
print("shear", zrfx.derived.maximum_shear(stress).max())
print("moved by", zrfx.derived.magnitude(moves).max())
