"""What stands in the application's window, by colours that only one page has."""

from harness import desktop, waiting

JOIN_COLOUR = "#4b2e83"
# The soft accents of the bundle's own pages, by colour scheme.
COLOURS = {
    "light": {"offline": "#e2f0f0", "misconfiguration": "#fdf1dc", "join": JOIN_COLOUR},
    "dark": {"offline": "#17343a", "misconfiguration": "#332818", "join": JOIN_COLOUR},
}
# Enough that no anti-aliased edge of another page counts.
ENOUGH_PIXELS = 1000


def page_of(application, scheme="light"):
    """Which page the window shows: offline, misconfiguration, join; None when it is none of them, or more than one."""
    windows = list(application.windows())
    if not windows:
        return None
    pages = COLOURS[scheme]
    counts = desktop.count_pixels(windows[0], list(pages.values()))
    found = [page for page, count in zip(pages, counts) if count >= ENOUGH_PIXELS]
    return found[0] if len(found) == 1 else None


def wait_for_page(application, page, scheme="light", seconds=waiting.SECONDS):
    waiting.until(lambda: page_of(application, scheme) == page,
                  lambda: f"the {page} page in the window, which shows: {page_of(application, scheme)}", seconds)
