// Jumps over what is empty. For each limit and octant of directions a table has the side, in bricks, of the largest
// empty cube that begins at a brick and extends only the way the ray goes; 0: there is something to see.
uniform usampler3D emptyTex;
uniform ivec3 grid;        // bricks of one table, in the order of the volume's texture
uniform vec3 brickScale;   // from the box to bricks, along the axes of the texture
uniform vec3 brickOffset;
uniform int limitCount;    // 0: nothing is known

struct Walk {
  ivec3 table;
  ivec3 forward;  // by axis: 1 where the ray goes towards greater indices, else 0
  vec3 start;     // bricks
  vec3 step;
  vec3 inverse;
};

Walk walk_of(Ray ray) {
  Walk walk;
  walk.start = ray.start.yxz * brickScale - brickOffset;
  walk.step = ray.step.yxz * brickScale;
  walk.inverse = 1.0 / walk.step;
  walk.forward = ivec3(greaterThanEqual(walk.step, vec3(0.0)));
  walk.table = walk.forward * grid;
  return walk;
}

// How many samples from this one on show nothing. The margin, in samples, keeps rounding from reaching over the
// far side of a cube.
int empty_samples(Walk walk, int i, int limit) {
  const float margin = 0.01;
  if (limitCount == 0) return 0;
  vec3 at = walk.start + float(i) * walk.step;
  ivec3 brick = clamp(ivec3(floor(at)), ivec3(0), grid - 1);
  int side = int(texelFetch(emptyTex, walk.table + brick + ivec3(0, 0, 2 * grid.z * limit), 0).r);
  vec3 far = vec3(brick + walk.forward * side + (1 - walk.forward) * (1 - side));
  vec3 samples = (far - at) * walk.inverse;
  float all = min(min(samples.x, samples.y), samples.z) - margin;
  return side == 0 ? 0 : max(int(ceil(min(all, 1e6))), 0);
}
