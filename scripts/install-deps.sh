#!/usr/bin/env bash
# The Debian packages a fresh machine needs to build PanelCorvane, run its tests and draw the
# workbench's report pages. The one place that lists them: .ci/run and the README call it.
# Runs apt-get as root, through sudo otherwise. Packages already present are left as they are.
set -euo pipefail

PACKAGES=(
  cmake g++ make pkg-config       # build
  googletest libgtest-dev libgmock-dev  # tests
  libbenchmark-dev                # bench/
  libcairo2-dev                   # the workbench's PNG report pages
  libpng-dev                      # `apply` on PNG images; the build works without it, CSV only
  liblcms2-dev                    # ICC profiles (`odf icc`, `verify --icc`); `apply` converts a tagged PNG
  liblcms2-utils                  # tests: transicc reads the profiles back and checks `apply`'s conversion
  ffmpeg                          # tests: exported .cube files and `apply` against ffmpeg's lut3d filter
  opencolorio-tools               # tests: ociobakelut's 33-node .cube read back onto the device grid
  binutils                        # tests: the plugin's exported symbols (nm)
  argyll                          # tests: ArgyllCMS as the colorimeter's side
  clang libclang-rt-14-dev        # fuzz/ and the -Werror build: clang, libFuzzer, sanitizer runtimes
  blueprint-tools                 # CI: Android.bp formatted as bpfmt writes it
  android-libutils-dev            # CI: the plugin compiled against AOSP's own libutils headers
  g++-aarch64-linux-gnu           # CI: the plugin and its tests cross-built for the phone's arm64 CPU
  qemu-user                       # CI: those arm64 tests run under qemu-aarch64 (no binfmt needed)
)

missing=()
for p in "${PACKAGES[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done
if [ ${#missing[@]} -eq 0 ]; then
  echo "install-deps: all ${#PACKAGES[@]} packages present"
  exit 0
fi

SUDO=""
if [ "$(id -u)" -ne 0 ]; then
  if ! command -v sudo >/dev/null; then
    echo "install-deps: not root and no sudo: install ${missing[*]} as root" >&2
    exit 1
  fi
  SUDO="sudo"
fi
echo "install-deps: installing ${missing[*]}"
# sudo drops the environment: the setting goes on the command line.
$SUDO env DEBIAN_FRONTEND=noninteractive apt-get update -qq
$SUDO env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
