// The server usually hands over its token as a cookie. A page that is reached otherwise has it in the address, after
// "#", where no server and no log sees it. It is moved to the storage of this tab at once.
const key = 'zev-token';

export function takeToken(location: Location, history: History, storage: Storage): string {
  const given = new URLSearchParams(location.hash.slice(1)).get('token');
  if (given === null) return storage.getItem(key) ?? '';
  storage.setItem(key, given);
  history.replaceState(null, '', location.pathname + location.search);
  return given;
}
