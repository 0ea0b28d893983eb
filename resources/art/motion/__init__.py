"""The four connection animations of the upgrade panel, drawn as SVG frames and packed as GIF."""
