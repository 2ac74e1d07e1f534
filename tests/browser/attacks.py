"""The content of hostile mails."""

OUTSIDE = "canary.example"


def attack(trap):
    """A script that each way of detection notices."""
    return (f"window.zeltoCanary=1;console.log('canary');fetch('http://{OUTSIDE}/');"
            f"new Image().src='http://127.0.0.1:{trap}/';alert('canary')")


def hostile_texts(trap):
    script = attack(trap)
    return [
        f"<img src=x onerror=\"{script}\">",
        f"<script>{script}</script>",
        f"</script></title></textarea><svg onload=\"{script}\">",
        f"\"'><iframe srcdoc=\"<script>parent.{script}</script>\"></iframe>",
        f"[click](javascript:{script}) <javascript:{script}> javascript:{script}",
        f"<a href=\"javascript:{script}\">x</a><base href=\"http://{OUTSIDE}/\"><meta http-equiv=refresh "
        f"content=\"0;url=http://{OUTSIDE}/\"><link rel=stylesheet href=\"http://{OUTSIDE}/\">",
        f"data:text/html,<script>{script}</script> vbscript:x file:///etc/passwd",
        "{{constructor.constructor('alert(1)')()}} ${alert(1)} <%= 1 %> &lt;b&gt; &#60;script&#62;",
        "invoice\u202efdp.exe\u202c \u2066\u2067\u2068\u2069 \u200f\u200e \u061c \u200b",
        "bell\u0007 escape\u001b]0;x\u0007 next\u0085line null\u0001 \u2028 \u2029 \ufeff",
        "W" * 10_000,
        "wide words " * 900,
        "e" + "\u0301" * 3000,
        "__proto__",
    ]


def hostile_parameters(trap):
    """For addresses, each of which costs a page: the texts that break out of markup, and the others in one."""
    texts = hostile_texts(trap)
    return [*texts[:4], " ".join(texts[4:10])[:3000]]
