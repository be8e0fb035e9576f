# Options of cpack. Packages for Debian are shipped with the best compression, which takes twenty seconds; those that are only
# looked at do without, but for ./check --twice.
compression=()
[ -n "${OCT_COMPILE_TWICE-}" ] || compression=(-D CPACK_DEBIAN_COMPRESSION_TYPE=gzip)
