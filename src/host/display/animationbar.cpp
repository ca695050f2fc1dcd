// The bar under an animated picture.
// Knows the browser's clock of animations; the picture is the writer's.
#include "host/display/animationbar.h"

#include "host/platform/format.h"

namespace tarnex {

namespace {

// `round`, `last`, `rate`, `ground` and `ink` stand in front of it.
constexpr char kScript[] = R"js(
const svg = document.documentElement;
if (svg.pauseAnimations && window === window.top) {
  const box = svg.viewBox.baseVal, width = box.width, height = box.height;
  const u = Math.max(width / 130, height / 95), left = 7 * u, right = width - 21 * u, y = height + 3.2 * u;
  box.height = height + 6.4 * u;
  svg.setAttribute('width', '100%');
  svg.setAttribute('height', '100%');
  svg.style.background = ground;
  const add = (name, attributes) => {
    const e = document.createElementNS(svg.namespaceURI, name);
    for (const k in attributes) e.setAttribute(k, attributes[k]);
    return svg.appendChild(e);
  };
  add('line', {x1: left, x2: right, y1: y, y2: y, stroke: ink, 'stroke-opacity': .25, 'stroke-width': .7 * u});
  const done = add('line', {x1: left, x2: left, y1: y, y2: y, stroke: ink, 'stroke-width': .7 * u});
  const knob = add('circle', {cx: left, cy: y, r: 1.3 * u, fill: ink});
  const clock = add('text', {x: right + 2.4 * u, y: y + .9 * u, 'font-size': 2.6 * u, fill: ink,
                             'font-family': 'Arial,Helvetica,sans-serif'});
  const icon = add('path', {fill: ink, transform: `translate(${3.2 * u} ${y}) scale(${u})`});
  const track = add('rect', {id: 'slider', x: left - 2 * u, y: y - 2.6 * u, width: right - left + 4 * u,
                             height: 5.2 * u, fill: 'transparent', cursor: 'pointer'});
  const button = add('rect', {id: 'play', x: .4 * u, y: y - 2.8 * u, width: 5.6 * u, height: 5.6 * u,
                              fill: 'transparent', cursor: 'pointer'});
  const told = t => {
    const s = Math.floor(t * rate + .5), two = n => String(n).padStart(2, '0');
    return (s < 3600 ? '' : Math.floor(s / 3600) + ':') +
           (s < 3600 ? Math.floor(s / 60) : two(Math.floor(s / 60) % 60)) + ':' + two(s % 60);
  };
  const show = () => {
    const t = Math.min(svg.getCurrentTime() % round, last), x = left + (right - left) * t / last;
    done.setAttribute('x2', x);
    knob.setAttribute('cx', x);
    clock.textContent = told(t) + ' / ' + told(last);
    icon.setAttribute('d', svg.animationsPaused() ? 'M-1.2-1.8 1.9 0-1.2 1.8z' : 'M-1.5-1.7h1.1v3.4h-1.1zM.5-1.7h1.1v3.4H.5z');
  };
  const seek = t => {
    svg.setCurrentTime(Math.min(Math.max(t, 0), last));
    show();
  };
  const toggle = () => {
    svg.animationsPaused() ? svg.unpauseAnimations() : svg.pauseAnimations();
    show();
  };
  const place = e => {
    const p = new DOMPoint(e.clientX, e.clientY).matrixTransform(svg.getScreenCTM().inverse());
    seek((p.x - left) / (right - left) * last);
  };
  let wasPaused = null;
  track.addEventListener('pointerdown', e => {
    wasPaused = svg.animationsPaused();
    svg.pauseAnimations();
    try { track.setPointerCapture(e.pointerId); } catch (none) {}
    place(e);
  });
  track.addEventListener('pointermove', e => { if (wasPaused !== null) place(e); });
  for (const end of ['pointerup', 'pointercancel'])
    track.addEventListener(end, () => {
      if (wasPaused === false) svg.unpauseAnimations();
      wasPaused = null;
    });
  button.addEventListener('click', toggle);
  document.addEventListener('keydown', e => {
    const t = svg.getCurrentTime() % round, step = {ArrowLeft: -1, ArrowRight: 1}[e.key];
    if (e.key === ' ') toggle();
    else if (step) seek(t + step * last / 60);
    else if (e.key === 'Home') seek(0);
    else if (e.key === 'End') seek(last);
    else return;
    e.preventDefault();
  });
  const follow = () => { show(); requestAnimationFrame(follow); };
  follow();
}
)js";

}  // namespace

std::string barScript(const AnimationBar& bar) {
  return formatted("const round = %.6f, last = %.6f, rate = %.9g, ground = '%s', ink = '%s';", bar.seconds,
                   bar.lastStop, bar.clockRate, bar.ground.c_str(), bar.ink.c_str()) +
         kScript;
}

}  // namespace tarnex
