# The Debian packages that this project uses, and why they are needed, in README's table. Sourced by run.sh and test.sh.
build_packages=(g++ make cmake pkg-config libgtkmm-3.0-dev libglib2.0-dev-bin flex bison)
run_packages=(mona adwaita-icon-theme librsvg2-common fonts-dejavu-core)
browser_packages=(libgtk-3-bin)
test_packages=(libgtest-dev libgmock-dev xvfb xauth xdotool openbox dbus at-spi2-core python3 python3-gi gir1.2-atspi-2.0)
