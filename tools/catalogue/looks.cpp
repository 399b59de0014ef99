#include "catalogue/looks.h"

namespace velmora::catalogue {

std::string_view styleSheet() noexcept {
    return R"(:root { color-scheme: light dark; --ink: #1d2426; --paper: #f7f7f4; --quiet: #5b6669;
  --line: #d8dcda; --link: #0b5c86; --mark: #e2eef4 }
@media (prefers-color-scheme: dark) { :root { --ink: #e4e9e6; --paper: #14191c; --quiet: #9aa6a8;
  --line: #2c3538; --link: #7fc4e8; --mark: #1f3440 } }
* { box-sizing: border-box }
body { margin: 0 auto; max-width: 46rem; padding: .5rem 1rem 3rem; background: var(--paper);
  color: var(--ink); font: 1rem/1.5 system-ui, sans-serif; overflow-wrap: anywhere }
h1 { font-size: 1.25rem; margin: .5rem 0 } h2 { font-size: 1.1rem; margin: 1.5rem 0 .25rem }
a { color: var(--link); text-decoration: none } a:hover { text-decoration: underline }
:focus-visible { outline: 3px solid var(--link); outline-offset: 2px }
nav { display: flex; flex-wrap: wrap; gap: .25rem 1.25rem }
nav a, ul.songs a { display: inline-block; padding: .6rem 0 }
form { display: flex; gap: .5rem; margin: .5rem 0 }
input, button { font: inherit; color: inherit; background: transparent; min-height: 2.75rem;
  border: 1px solid var(--quiet); border-radius: .4rem; padding: .25rem .75rem }
input { flex: 1; min-width: 0 } button { cursor: pointer }
ul, ol { list-style: none; margin: 0; padding: 0 }
ul.songs li { border-bottom: 1px solid var(--line) }
small { color: var(--quiet) } ul.songs small { display: block; margin-top: -.6rem;
  padding-bottom: .4rem }
audio, video { width: 100%; margin: .75rem 0; position: sticky; top: 0 }
video { max-height: 60vh; background: #000 }
ol.lyric li { padding: .15rem .5rem; border-radius: .3rem }
ol.lyric li[tabindex] { cursor: pointer }
ol.lyric li.now { background: var(--mark); font-weight: 600 }
)";
}

std::string_view script() noexcept {
    return R"('use strict';
(() => {
  const player = document.querySelector('audio, video');
  if (!player) return;
  const lines = [...document.querySelectorAll('ol.lyric li[data-at]')];
  const times = lines.map(line => Number(line.dataset.at) / 1000);
  const calm = matchMedia('(prefers-reduced-motion: reduce)').matches;
  let now = -1;
  const follow = () => {
    let next = -1;
    while (next + 1 < times.length && times[next + 1] <= player.currentTime + 0.05) ++next;
    if (next === now) return;
    if (now >= 0) { lines[now].classList.remove('now'); lines[now].removeAttribute('aria-current') }
    now = next;
    if (now < 0) return;
    lines[now].classList.add('now');
    lines[now].setAttribute('aria-current', 'true');
    if (!player.paused)
      lines[now].scrollIntoView({ block: 'center', behavior: calm ? 'auto' : 'smooth' });
  };
  const tick = () => { follow(); if (!player.paused && !player.ended) requestAnimationFrame(tick) };
  player.addEventListener('play', tick);
  for (const event of ['seeked', 'timeupdate']) player.addEventListener(event, follow);
  lines.forEach((line, i) => {
    const go = () => { player.currentTime = times[i]; follow(); player.play() };
    line.tabIndex = 0;
    line.addEventListener('click', go);
    line.addEventListener('keydown', event => { if (event.key === 'Enter') go() });
  });
  document.addEventListener('keydown', event => {
    if (event.key !== ' ' || event.target.closest('input, button, a, audio, video')) return;
    event.preventDefault();
    if (player.paused) player.play(); else player.pause();
  });
  const next = document.querySelector('a[rel=next]');
  player.addEventListener('ended', () => { if (next) location.href = next.href + '#play' });
  if (location.hash === '#play') player.play().catch(() => {});
})();
)";
}

} // namespace velmora::catalogue
